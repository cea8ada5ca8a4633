// nxtm: the workbench of the type manager. Looks at types, images and keys, and keeps
// a small object store in which the library does all that it does for an engine.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "commands/commands.h"
#include "commands/reference.h"
#include "data/failure.h"
#include "nxtmdata.h"
#include "nxversion.h"
#include "store/etcdclient.h"

namespace {

using namespace nxtm;

/// What the command line gives; one field serves every command that has it.
struct Arguments {
  std::string type, text, other, relation, low, high, hex, schema, data, store, attribute, condition,
      blobFolder;
  std::vector<std::string> texts;
  LookOptions look;
  QueryOptions query;
  ImportOptions import;
  bool hash = false, header = false, noWait = false;

  Wait WaitOrNot() const { return noWait ? Wait::kNever : Wait::kForever; }
};

void AddTextOptions(CLI::App* command, LookOptions& look) {
  command->add_option("--language", look.language, "language of texts, by name or number")
      ->capture_default_str();
  command->add_option("--codeset", look.codeSet, "code set of texts (0: Latin-1 where it does, else Unicode)")
      ->capture_default_str();
}

void AddImageOptions(CLI::App* command, LookOptions& look) {
  command
      ->add_option("--format", look.format,
                   "format byte of the images (1: this machine's order, 2: the other)")
      ->capture_default_str();
  AddTextOptions(command, look);
}

void AddCompareOptions(CLI::App* command, LookOptions& look) {
  command->add_flag("--ignore-case", look.ignoreCase, "letter case does not count");
  command->add_flag("--ignore-accents", look.ignoreAccents, "accents do not count");
  command->add_flag("--skip-spaces", look.skipSpaces, "spaces do not count");
  command->add_flag("--skip-symbols", look.skipSymbols, "symbols do not count");
  command->add_flag("--literally", look.literally, "* and ? are ordinary characters");
  command->add_flag("--order-values", look.orderValues, "compare order values alone");
}

void AddLookingCommands(CLI::App& app, Arguments& a) {
  app.add_subcommand("types", "list the types")->callback([] { ListTypes(); });

  auto* store = app.add_subcommand("store", "stored images of values, in hex");
  store->add_option("TYPE", a.type)->required();
  store->add_option("TEXT", a.texts)->required();
  AddImageOptions(store, a.look);
  store->callback([&] { ShowStored(a.type, a.texts, a.look); });

  auto* load = app.add_subcommand("load", "the value of a stored image in hex");
  load->add_option("TYPE", a.type)->required();
  load->add_option("HEX", a.hex)->required();
  AddImageOptions(load, a.look);
  load->callback([&] { ShowLoaded(a.type, a.hex, a.look); });

  auto* compare = app.add_subcommand("compare", "compare two values; of texts the second is the pattern");
  compare->add_option("TYPE", a.type)->required();
  compare->add_option("A", a.text)->required();
  compare->add_option("B", a.other)->required();
  AddImageOptions(compare, a.look);
  AddCompareOptions(compare, a.look);
  compare->callback([&] { ShowComparison(a.type, a.text, a.other, a.look); });

  auto* hash = app.add_subcommand("hash", "hash of a value");
  hash->add_option("TYPE", a.type)->required();
  hash->add_option("TEXT", a.text)->required();
  AddImageOptions(hash, a.look);
  hash->callback([&] { ShowHash(a.type, a.text, a.look); });

  auto* key = app.add_subcommand("key", "index key of a value");
  key->add_option("TYPE", a.type)->required();
  key->add_option("TEXT", a.text)->required();
  AddImageOptions(key, a.look);
  key->callback([&] { ShowKey(a.type, a.text, a.look); });

  auto* bounds =
      app.add_subcommand("bounds", "scan bounds of a term, and its share of an index from LOW to HIGH");
  bounds->add_option("TYPE", a.type)->required();
  bounds->add_option("RELATION", a.relation, "=, !=, <, <=, > or >=")->required();
  bounds->add_option("TEXT", a.text)->required();
  bounds->add_option("LOW", a.low, "smallest value of the index");
  bounds->add_option("HIGH", a.high, "largest value of the index");
  AddImageOptions(bounds, a.look);
  AddCompareOptions(bounds, a.look);
  bounds->callback([&] { ShowBounds(a.type, a.relation, a.text, a.low, a.high, a.look); });

  auto* print = app.add_subcommand("print", "the text of a value under a format");
  print->add_option("TYPE", a.type)->required();
  print->add_option("VALUE", a.text)->required();
  print->add_option("--format", a.look.textFormat, "directives of the type; default: its own format");
  AddTextOptions(print, a.look);
  print->callback([&] { ShowPrinted(a.type, a.text, a.look); });

  auto* scan = app.add_subcommand("scan", "the value that a text has under a format");
  scan->add_option("TYPE", a.type)->required();
  scan->add_option("TEXT", a.text)->required();
  scan->add_option("--format", a.look.textFormat, "directives of the type; default: its own format");
  AddTextOptions(scan, a.look);
  scan->callback([&] { ShowScanned(a.type, a.text, a.look); });

  auto* order = app.add_subcommand("order", "collation order values of a text");
  order->add_option("TEXT", a.text)->required();
  AddImageOptions(order, a.look);
  order->callback([&] { ShowOrder(a.text, a.look); });
}

void AddWritingOption(CLI::App* command, Arguments& a) {
  command->add_flag("--no-wait", a.noWait, "fail when another process is using the store");
}

void AddWorkingCommands(CLI::App& app, Arguments& a) {
  auto* importing = app.add_subcommand("import", "add the rows of a CSV file to a store, all or none");
  importing
      ->add_option("SCHEMA", a.schema,
                   "a line per column: name type [nullable] [format=F] [language=L] [codeset=C]")
      ->required();
  importing
      ->add_option("DATA", a.data, "CSV, - for standard input; a field that is empty and not quoted is null")
      ->required();
  importing->add_option("STORE", a.store)->required();
  importing->add_flag("--header", a.import.header, "the first row names the columns, in any order");
  importing->add_option("--delimiter", a.import.delimiter, "the byte between fields; tab is one, too")
      ->capture_default_str();
  importing
      ->add_option("--encoding", a.import.encoding,
                   "utf-8, latin1, windows-1252, latin9, latin2, utf-16, utf-16le or utf-16be")
      ->capture_default_str();
  importing->add_option("--skip-bad", a.import.badRows, "set rows that are not right aside in a new file");
  AddWritingOption(importing, a);
  importing->callback([&] {
    a.import.wait = a.WaitOrNot();
    Import(a.schema, a.data, a.store, a.import);
  });

  auto* exporting = app.add_subcommand("export", "print the records of a store as CSV");
  exporting->add_option("STORE", a.store)->required();
  exporting->add_flag("--header", a.header, "print the names of the columns first");
  exporting->add_option("--blobs", a.blobFolder, "write blobs to new files of a folder, and their names");
  exporting->callback([&] { Export(a.store, a.header, a.blobFolder); });

  auto* check = app.add_subcommand("check", "walk every record and every index entry, both ways");
  check->add_option("STORE", a.store)->required();
  check->callback([&] { Check(a.store); });

  auto* salvage =
      app.add_subcommand("salvage", "print the records that can be read of a damaged store as CSV");
  salvage->add_option("STORE", a.store)->required();
  salvage->add_flag("--header", a.header, "print the names of the columns first");
  salvage->callback([&] { Salvage(a.store, a.header); });

  auto* info = app.add_subcommand("info", "the schema, counts, indexes and versions of a store");
  info->add_option("STORE", a.store)->required();
  info->callback([&] { Info(a.store); });

  auto* index = app.add_subcommand("index", "make an index of an attribute");
  index->add_option("STORE", a.store)->required();
  index->add_option("ATTRIBUTE", a.attribute)->required();
  index->add_flag("--hash", a.hash, "by hash, for exact matches, in place of ordered");
  AddWritingOption(index, a);
  index->callback([&] { MakeIndex(a.store, a.attribute, a.hash, a.WaitOrNot()); });

  auto* reindex = app.add_subcommand("reindex", "rebuild every index of a store");
  reindex->add_option("STORE", a.store)->required();
  AddWritingOption(reindex, a);
  reindex->callback([&] { Reindex(a.store, a.WaitOrNot()); });

  auto* drop = app.add_subcommand("drop", "remove an index of an attribute");
  drop->add_option("STORE", a.store)->required();
  drop->add_option("ATTRIBUTE", a.attribute)->required();
  drop->add_flag("--hash", a.hash, "the one by hash, in place of the ordered one");
  AddWritingOption(drop, a);
  drop->callback([&] { DropIndex(a.store, a.attribute, a.hash, a.WaitOrNot()); });

  auto* deleting = app.add_subcommand("delete", "take the records away that a condition selects");
  deleting->add_option("STORE", a.store)->required();
  deleting->add_option("CONDITION", a.condition, "such as: word = \"Haus*\"")->required();
  AddWritingOption(deleting, a);
  deleting->callback([&] { Delete(a.store, a.condition, a.WaitOrNot()); });

  auto* compact = app.add_subcommand("compact", "give the free pages of a store back");
  compact->add_option("STORE", a.store)->required();
  AddWritingOption(compact, a);
  compact->callback([&] { Compact(a.store, a.WaitOrNot()); });

  auto* query = app.add_subcommand("query", "print the records that a condition selects");
  query->add_option("STORE", a.store)->required();
  query->add_option("CONDITION", a.condition, "such as: word = \"Haus*\" ignoring case and length > 5")
      ->required();
  query->add_flag("--explain", a.query.explain, "tell the estimates, the bounds and what was read");
  query->add_flag("--scan", a.query.scan, "use no index");
  query->add_flag("--count", a.query.count, "print the number of records only");
  query->add_option("--min", a.query.min, "print the smallest values of attributes: a,b");
  query->add_option("--max", a.query.max, "print the largest values of attributes: a,b");
  query->add_option("--select", a.query.select, "the attributes that are printed: a,b");
  query->add_option("--order-by", a.query.orderBy, "print in the order of attributes: a,b desc");
  query->add_option("--limit", a.query.limit, "print at most so many records");
  query->add_flag("--header", a.query.header, "print the names of the columns first");
  query->add_option("--output", a.query.output, "csv, json or table")->capture_default_str();
  query->callback([&] { Query(a.store, a.condition, a.query); });
}

/// Whether the command that was given changes a store.
bool WritesToStore(const CLI::App& app) {
  const std::vector<CLI::App*> given = app.get_subcommands();
  return !given.empty() && given[0]->get_option_no_throw("--no-wait") != nullptr;
}

/// The library goes on without a configuration that cannot be read, and says nothing.
void WarnOfMissingConfiguration() {
  const char* file = std::getenv("NX21_CONFIG");
  if (file && access(file, R_OK) != 0)
    std::fprintf(stderr, "nxtm: warning: NX21_CONFIG names %s: %s\n", file, std::strerror(errno));
}

/// Names a command that is not there, with the one that comes nearest.
[[noreturn]] void FailUnknown(const CLI::App& app, const std::string& name) {
  std::string nearest;
  unsigned long least = name.size();
  for (const CLI::App* command : app.get_subcommands({})) {
    const unsigned long distance = EditDistance(name, command->get_name());
    if (distance < least) nearest = command->get_name();
    least = std::min(least, distance);
  }
  throw Failure("there is no command '" + name + "'" +
                    (nearest.empty() ? "" : "; the nearest one is '" + nearest + "'") + "; see nxtm help",
                kUsageStatus);
}

CLI::App* FindCommand(CLI::App& app, const std::string& name) {
  try {
    return app.get_subcommand(name);
  } catch (const CLI::OptionNotFound&) {
    FailUnknown(app, name);
  }
}

void AddHelp(CLI::App& app, Arguments& a) {
  auto* help = app.add_subcommand("help", "what the commands do, or one of them");
  help->add_option("COMMAND", a.text);
  help->callback([&] {
    // App::help() would tell of the command that was given, which is help.
    const CLI::App* about = a.text.empty() ? &app : FindCommand(app, a.text);
    const std::string name = about == &app ? "nxtm" : "nxtm " + about->get_name();
    std::fputs(app.get_formatter()->make_help(about, name, CLI::AppFormatMode::Normal).c_str(), stdout);
  });
  auto* manual = app.add_subcommand("manual", "the page of the manual, for man")->group("");
  manual->callback([&] { std::fputs(ManualPage(app).c_str(), stdout); });
  auto* completion = app.add_subcommand("completion", "the completion of commands, for bash")->group("");
  completion->callback([&] { std::fputs(BashCompletion(app).c_str(), stdout); });
}

/// How the nodes of a store in a cluster are spoken to; there is no option for a password.
void AddClusterOptions(CLI::App& app) {
  EtcdOptions& options = TheEtcdOptions();
  app.add_option("--cacert", options.caFile,
                 "nodes of a cluster are spoken to by TLS, and known by this file");
  app.add_option("--cert", options.certFile, "certificate to show to the nodes of a cluster");
  app.add_option("--key", options.keyFile, "key of the certificate");
  app.add_option("--user", options.user, "user of a cluster; the password is asked for, or in NXTM_PASSWORD");
  app.add_option("--timeout", options.timeoutSeconds, "seconds that a cluster has for an answer")
      ->check(CLI::Range(1, 3600))
      ->capture_default_str();
}

/// Runs what the command line asks for; returns the exit status.
int Run(CLI::App& app, int argc, char** argv) {
  try {
    if (argc > 1 && argv[1][0] != '-') FindCommand(app, argv[1]);
    app.parse(argc, argv);
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsageStatus;
  } catch (const std::exception& error) {
    std::fflush(stdout);
    std::fprintf(stderr, "nxtm: %s\n", error.what());
    const auto* const failure = dynamic_cast<const Failure*>(&error);
    return failure ? failure->status : kStoreStatus;
  }
}

}  // namespace

int main(int argc, char** argv) {
  WarnOfMissingConfiguration();
  ___NxTypemgrContext(1);
  Arguments arguments;
  CLI::App app("Workbench of the type manager", "nxtm");
  app.set_version_flag("--version", "nxtm " NX_VERSION_TEXT);
  app.footer(kStatuses);
  app.require_subcommand(1);
  app.fallthrough();  // options of all commands may stand behind them
  AddLookingCommands(app, arguments);
  AddWorkingCommands(app, arguments);
  AddHelp(app, arguments);
  AddClusterOptions(app);
  int status = Run(app, argc, argv);
  if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && status == 0) {
    // What is written to a store is there, whatever becomes of the line that says so.
    const bool kept = WritesToStore(app);
    std::fprintf(stderr, "nxtm: the output cannot be written%s\n", kept ? "; the store is" : "");
    status = kept ? 0 : kStoreStatus;
  }
  ___NxTypemgrContext(0);
  return status;
}
