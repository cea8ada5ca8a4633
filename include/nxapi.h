/// Export macro of the library's public symbols. Everything else is hidden
/// (`-fvisibility=hidden`).
#ifndef NXAPI_H
#define NXAPI_H

#if defined(__GNUC__)
#define NX_API __attribute__((visibility("default")))
#else
#define NX_API
#endif

#endif
