/// Whole files.
#ifndef NXTM_FILE_H
#define NXTM_FILE_H

#include <string>
#include <string_view>

namespace nxtm {

/// The whole of a file; a Failure tells why it cannot be read, or that it has more than
/// `most` bytes.
std::string ReadFile(const std::string& path, unsigned long most);

/// Writes a file that is not there yet; a Failure when it is, or cannot be written.
void WriteNewFile(const std::string& path, std::string_view bytes);

/// The folder part of a path with its "/", or nothing.
std::string FolderOf(const std::string& path);

}  // namespace nxtm

#endif
