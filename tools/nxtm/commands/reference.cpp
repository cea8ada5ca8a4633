// Manual, completion and hints, made of the description of the command line.

#include "commands/reference.h"

#include <algorithm>
#include <vector>

#include "nxversion.h"

namespace nxtm {

const char kStatuses[] =
    "Exit status: 0 success, 1 a command line that is not right, 2 input that is not right,\n"
    "3 a store or file that is damaged or cannot be read or written, 4 a store on other\n"
    "machines that cannot be reached.";

namespace {

/// A text with nothing in it that man(7) takes for its own.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (char c : text) {
    if (c == '\\' || c == '-') escaped += '\\';
    escaped += c == '\n' ? ' ' : c;
  }
  return escaped;
}

/// "--format F" or "STORE", as the help names it.
std::string NameOf(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true);
  return option.get_name(false, true) +
         (option.get_expected_max() > 0 && option.get_type_size() > 0 ? " VALUE" : "");
}

std::string CommandSection(const CLI::App& command) {
  std::string usage, details;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_name() == "-h,--help" || option->get_name() == "--help") continue;
    const bool given = option->get_positional();
    if (given) usage += ' ' + option->get_name(true);
    if (!given || !option->get_description().empty())
      details +=
          ".IP \"\\fB" + Escaped(NameOf(*option)) + "\\fR\" 4\n" + Escaped(option->get_description()) + '\n';
  }
  return ".TP\n\\fBnxtm " + command.get_name() + "\\fR" + Escaped(usage) + '\n' +
         Escaped(command.get_description()) + "\n.RS\n" + details + ".RE\n";
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string page = ".TH NXTM 1 \"\" \"nxtm " NX_VERSION_TEXT
                     "\"\n.SH NAME\nnxtm \\- workbench of the type manager\n"
                     ".SH SYNOPSIS\n\\fBnxtm\\fR COMMAND ARGUMENT...\n.SH COMMANDS\n";
  for (const CLI::App* command : CommandsOf(app)) page += CommandSection(*command);
  return page + ".SH EXIT STATUS\n" + Escaped(kStatuses) + '\n';
}

std::string BashCompletion(const CLI::App& app) {
  std::string names, cases;
  for (const CLI::App* command : CommandsOf(app)) {
    names += (names.empty() ? "" : " ") + command->get_name();
    std::string options;
    for (const CLI::Option* option : command->get_options())
      for (const std::string& name : option->get_lnames()) options += (options.empty() ? "--" : " --") + name;
    cases += "      " + command->get_name() + ") words='" + options + "' ;;\n";
  }
  return "_nxtm() {\n  local word=${COMP_WORDS[COMP_CWORD]} words=\n  if [[ $COMP_CWORD -eq 1 ]]; then\n    "
         "words='" +
         names + "'\n  elif [[ $word == -* ]]; then\n    case ${COMP_WORDS[1]} in\n" + cases +
         "    esac\n  else\n    COMPREPLY=($(compgen -f -- \"$word\"))\n    return\n  fi\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n}\ncomplete -F _nxtm nxtm\n";
}

unsigned long EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::vector<unsigned long>> least(a.size() + 1, std::vector<unsigned long>(b.size() + 1));
  for (unsigned long i = 0; i <= a.size(); ++i) {
    for (unsigned long k = 0; k <= b.size(); ++k) {
      if (i == 0 || k == 0) {
        least[i][k] = i + k;
        continue;
      }
      least[i][k] = std::min(
          {least[i - 1][k] + 1, least[i][k - 1] + 1, least[i - 1][k - 1] + (a[i - 1] == b[k - 1] ? 0 : 1)});
      if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1])
        least[i][k] = std::min(least[i][k], least[i - 2][k - 2] + 1);
    }
  }
  return least[a.size()][b.size()];
}

}  // namespace nxtm
