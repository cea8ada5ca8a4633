/// What is made of the command line's own description.
#ifndef NXTM_REFERENCE_H
#define NXTM_REFERENCE_H

#include <CLI/CLI.hpp>
#include <string>

namespace nxtm {

/// What the exit statuses mean, as help and manual tell it.
extern const char kStatuses[];

/// The page of the manual, in the language of man(7).
std::string ManualPage(const CLI::App& app);
/// Functions of bash that complete commands and options.
std::string BashCompletion(const CLI::App& app);

/// How many characters are to be inserted, taken out, replaced or exchanged with the next one
/// to make one word of another.
unsigned long EditDistance(const std::string& a, const std::string& b);

}  // namespace nxtm

#endif
