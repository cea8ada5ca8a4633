// Schemas, and records by them.

#include "data/schema.h"

#include <algorithm>
#include <cstring>

#include "data/failure.h"
#include "data/file.h"

namespace nxtm {

namespace {

struct Word {
  std::string text;
  unsigned long column;  // from 1
  bool closed = true;    // false when its quote does not end
};

/// The words of a line up to a comment. Quotes around a part of a word are taken off.
std::vector<Word> SplitWords(const std::string& line) {
  const std::string blanks = " \t\r";
  std::vector<Word> words;
  bool inWord = false, quoted = false;
  for (unsigned long i = 0; i < line.size() && (quoted || line[i] != '#'); ++i) {
    const char c = line[i];
    if (!quoted && blanks.find(c) != std::string::npos) {
      inWord = false;
      continue;
    }
    if (!inWord) words.push_back({"", i + 1});
    inWord = true;
    const bool doubled = quoted && c == '"' && line.compare(i, 2, "\"\"") == 0;
    if (c == '"' && !doubled)
      quoted = !quoted;
    else
      words.back().text += c;
    if (doubled) ++i;
  }
  if (quoted) words.back().closed = false;
  return words;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (char c : text) quoted += c == '"' ? std::string(2, c) : std::string(1, c);
  return quoted + '"';
}

bool IsName(const std::string& text) {
  constexpr unsigned long kLongest = 64;  // tables of a store are named after it
  return text.size() <= kLongest && !std::isdigit(static_cast<unsigned char>(text[0])) &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

/// What follows `prefix` in a word; null when the word begins otherwise.
const char* ValueOf(const Word& word, const std::string& prefix) {
  return word.text.rfind(prefix, 0) == 0 ? word.text.c_str() + prefix.size() : nullptr;
}

void ApplyOption(Column& column, const Word& word) {
  const bool isText = column.type == kStringTypeId;
  const char* value = nullptr;
  if (word.text == "nullable")
    column.nullable = true;
  else if (isText && (value = ValueOf(word, "language=")))
    column.style.language = FindLanguage(value);
  else if (isText && (value = ValueOf(word, "codeset=")))
    column.style.codeSet = FindCodeSet(value);
  else if (!isText && (value = ValueOf(word, "format=")) && *value)
    Converter(column.type, column.style = {0, 1, value, ""});
  else
    throw Failure("'" + word.text + "' is no option of a column of type " +
                  Manager().NameGet(column.type, nullptr));
}

/// A column whose type and options are known gets the form that it is stored in.
void ChooseStoredForm(Column& column) {
  if (FindType(FormOf(column.type).type) != column.type)
    column.nullable = true;  // a nullable type by its own name
  if (column.nullable) {
    column.type = NullableTypeOf(column.type);
    if (Manager().SupportsNullValue(column.type)) column.nullImage = NullImage(column.type);
  }
  column.kind = FormOf(column.type).kind;
  column.imageSize = Box(column.type).FixedSize();
}

Column ParseColumn(const std::vector<Word>& words, Word& place) {
  Column column;
  place = words[0];
  column.name = words[0].text;
  if (!IsName(column.name)) throw Failure("'" + column.name + "' is not a name");
  if (words.size() < 2) throw Failure("column '" + column.name + "' has no type");
  place = words[1];
  column.type = FindType(words[1].text);
  FormOf(column.type);  // a type without one has no columns
  for (unsigned long i = 2; i < words.size(); ++i) {
    place = words[i];
    if (!words[i].closed) throw Failure("the quote does not end");
    ApplyOption(column, words[i]);
  }
  ChooseStoredForm(column);
  return column;
}

}  // namespace

Schema Schema::Parse(const std::string& text, const std::string& file) {
  Schema schema;
  unsigned long number = 0;
  for (unsigned long at = 0; at < text.size();) {
    const unsigned long end = std::min(text.find('\n', at), text.size());
    const std::vector<Word> words = SplitWords(text.substr(at, end - at));
    at = end + 1;
    ++number;
    if (words.empty()) continue;
    Word place;
    try {
      Column column = ParseColumn(words, place);
      place = words[0];
      for (const Column& other : schema.columns_)
        if (other.name == column.name) throw Failure("column '" + column.name + "' is there already");
      schema.columns_.push_back(std::move(column));
    } catch (const Failure& failure) {
      throw FailureAt(file, number, place.column, failure.what());
    }
  }
  if (schema.columns_.empty()) throw FailureAt(file, 1, 1, "the schema names no column");
  return schema;
}

Schema Schema::Read(const std::string& file) {
  constexpr unsigned long kLongest = 1UL << 20;  // a thousand columns and comments have less
  return Parse(ReadFile(file, kLongest), file);
}

std::string Schema::Text() const {
  std::string text;
  for (const Column& column : columns_) {
    text += column.name + " " + FormOf(column.type).type;
    if (column.nullable) text += " nullable";
    if (column.type == kStringTypeId) {
      text += " language=" + std::to_string(column.style.language);
      if (column.style.codeSet) text += " codeset=" + std::to_string(column.style.codeSet);
    }
    if (!column.style.format.empty()) text += " format=" + Quoted(column.style.format);
    text += "\n";
  }
  return text;
}

unsigned long Schema::Find(const std::string& name) const {
  std::string names;
  for (unsigned long i = 0; i < columns_.size(); ++i) {
    if (columns_[i].name == name) return i;
    names += (i ? ", " : "") + columns_[i].name;
  }
  throw Failure("there is no attribute '" + name + "' (" + names + ")");
}

std::vector<Converter> ConvertersOf(const Schema& schema, const std::string& folder) {
  std::vector<Converter> converters;
  for (const Column& column : schema.Columns()) {
    TextStyle style = column.style;
    style.folder = folder;
    converters.emplace_back(column.type, std::move(style));
  }
  return converters;
}

namespace {

[[noreturn]] void FailDamaged(const Column& column) {
  throw Failure("attribute '" + column.name + "' is damaged");
}

/// Takes the byte that tells whether an attribute is null.
bool TakeNullByte(const Column& column, std::string_view& bytes) {
  if (bytes.empty() || static_cast<unsigned char>(bytes[0]) > 1) FailDamaged(column);
  const bool isNull = bytes[0] == 1;
  bytes.remove_prefix(1);
  return isNull;
}

/// The size of the image of a string as they are stored today: its first two bytes count
/// those behind them, and it ends with 00 FF. 0 for what needs a closer look.
inline unsigned long SizeOfString(std::string_view data) {
  constexpr unsigned long kCountSize = 2, kLeast = 4;
  if (data.size() < kCountSize) return 0;
  unsigned short count;
  std::memcpy(&count, data.data(), kCountSize);
  if (count < kLeast || data.size() < count + kCountSize) return 0;
  return data[count] == 0 && data[count + 1] == '\xFF' ? count + kCountSize : 0;
}

inline unsigned long SizeOf(const Column& column, std::string_view bytes) {
  if (column.imageSize != 0) return column.imageSize;
  if (column.type == kStringTypeId)
    if (const unsigned long size = SizeOfString(bytes)) return size;
  return ImageSize(column.type, column.kind, bytes);
}

inline Field TakeField(const Column& column, std::string_view& bytes) {
  if (column.HasNullByte() && TakeNullByte(column, bytes)) return {{}, true};
  const unsigned long size = SizeOf(column, bytes);
  if (size == 0 || size > bytes.size()) FailDamaged(column);
  const std::string_view image(bytes.data(), size);
  bytes.remove_prefix(size);
  return {image, !column.nullImage.empty() && image == column.nullImage};
}

}  // namespace

Field Record::Take(const Column& column, std::string_view& bytes) { return TakeField(column, bytes); }

void RecordReader::TakeUpTo(unsigned long attribute) {
  for (; taken_ <= attribute; ++taken_) fields_[taken_] = TakeField(columns_[taken_], rest_);
}

const std::vector<Field>& RecordReader::All() {
  (*this)[columns_.size() - 1];
  if (!rest_.empty()) throw Failure("there are bytes behind the last attribute");
  return fields_;
}

void Record::AppendHead(std::string& bytes, const Column& column) {
  if (column.HasNullByte()) bytes += '\0';
}

void Record::AppendNull(std::string& bytes, const Column& column) {
  if (column.HasNullByte()) bytes += '\1';
  bytes += column.nullImage;
}

}  // namespace nxtm
