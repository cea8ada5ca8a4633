/// The commands of the workbench, one function each. They print to standard output
/// and throw a Failure for input that is not right.
#ifndef NXTM_COMMANDS_H
#define NXTM_COMMANDS_H

#include <optional>
#include <string>
#include <vector>

#include "store/lock.h"

namespace nxtm {

/// How the looking commands read and write.
struct LookOptions {
  unsigned int format = 1;                // format byte of the images
  std::optional<std::string> textFormat;  // of the library's print and scan functions
  std::string language = "1";
  std::string codeSet = "0";  // of texts; 0 chooses
  bool ignoreCase = false, ignoreAccents = false, skipSpaces = false, skipSymbols = false;
  bool literally = false;    // no wildcards
  bool orderValues = false;  // order values alone
};

// Looking at types, images and keys.

void ListTypes();
void ShowStored(const std::string& type, const std::vector<std::string>& texts, const LookOptions& options);
void ShowLoaded(const std::string& type, const std::string& hex, const LookOptions& options);
void ShowComparison(const std::string& type, const std::string& a, const std::string& b,
                    const LookOptions& options);
void ShowHash(const std::string& type, const std::string& text, const LookOptions& options);
void ShowKey(const std::string& type, const std::string& text, const LookOptions& options);
void ShowBounds(const std::string& type, const std::string& relation, const std::string& text,
                const std::string& low, const std::string& high, const LookOptions& options);
void ShowOrder(const std::string& text, const LookOptions& options);
/// The library's text of a value under a format, and the value that it reads from a text;
/// without a format under the type's own.
void ShowPrinted(const std::string& type, const std::string& value, const LookOptions& options);
void ShowScanned(const std::string& type, const std::string& text, const LookOptions& options);

// Working on stores.

struct ImportOptions {
  bool header = false;          // the first row names the columns, in any order
  std::string delimiter = ",";  // a byte, or "tab"
  std::string encoding = "utf-8";
  std::string badRows;  // a new file for rows that are not right; empty: one is a Failure
  Wait wait = Wait::kForever;
};
/// Adds the rows of a CSV file, "-" for standard input, all or none.
void Import(const std::string& schemaFile, const std::string& dataFile, const std::string& storeFile,
            const ImportOptions& options = {});
/// Blobs go to new files of a folder where one is named.
void Export(const std::string& storeFile, bool header, const std::string& blobFolder = "");
/// Prints the records that can be read of a damaged store in a file, and tells how many.
void Salvage(const std::string& storeFile, bool header);
void Check(const std::string& storeFile);
/// Prints the schema, the counts, the indexes and the versions of a store.
void Info(const std::string& storeFile);
void MakeIndex(const std::string& storeFile, const std::string& attribute, bool hash,
               Wait wait = Wait::kForever);
void Reindex(const std::string& storeFile, Wait wait);
void DropIndex(const std::string& storeFile, const std::string& attribute, bool hash, Wait wait);
/// Takes the records away that a condition selects; the others get the numbers before them.
void Delete(const std::string& storeFile, const std::string& condition, Wait wait);
void Compact(const std::string& storeFile, Wait wait);

struct QueryOptions {
  bool explain = false;        // tell estimates, bounds and what was read
  bool scan = false;           // read every record
  bool count = false;          // print the number of records in their place
  bool header = false;         // the names of the columns first
  unsigned long limit = 0;     // records printed; 0 is all
  std::string select;          // columns, with commas between them; empty: all
  std::string orderBy;         // columns, each with "asc" or "desc" behind it, or without
  std::string min, max;        // columns whose extremes are printed in place of the records
  std::string output = "csv";  // the form of rows
};
/// Prints the records that a condition selects, or figures of them.
void Query(const std::string& storeFile, const std::string& condition, const QueryOptions& options);

}  // namespace nxtm

#endif
