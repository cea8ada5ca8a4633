// Schemas, and records by them.

#include "data/schema.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "data/failure.h"

namespace nxtm {

namespace {

struct Word {
  std::string text;
  unsigned long column;  // from 1
};

std::vector<Word> SplitWords(const std::string& line) {
  std::vector<Word> words;
  for (unsigned long i = 0; i < line.size() && line[i] != '#';) {
    unsigned long start = line.find_first_not_of(" \t\r", i);
    if (start == std::string::npos || line[start] == '#') break;
    i = std::min(line.find_first_of(" \t\r#", start), line.size());
    words.push_back({line.substr(start, i - start), start + 1});
  }
  return words;
}

bool IsName(const std::string& text) {
  constexpr unsigned long kLongest = 64;  // tables of a store are named after it
  return text.size() <= kLongest && !std::isdigit(static_cast<unsigned char>(text[0])) &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

void ApplyOption(Column& column, const std::string& word) {
  bool isText = column.type == kStringTypeId;
  if (word == "nullable")
    column.nullable = true;
  else if (isText && word.rfind("language=", 0) == 0)
    column.style.language = FindLanguage(word.substr(9));
  else if (isText && word.rfind("codeset=", 0) == 0)
    column.style.codeSet = FindCodeSet(word.substr(8));
  else
    throw Failure("'" + word + "' is no option of a column of type " +
                  Manager().NameGet(column.type, nullptr));
}

}  // namespace

Schema Schema::Parse(const std::string& text, const std::string& file) {
  Schema schema;
  unsigned long number = 0;
  for (unsigned long at = 0; at < text.size();) {
    unsigned long end = std::min(text.find('\n', at), text.size());
    std::vector<Word> words = SplitWords(text.substr(at, end - at));
    at = end + 1;
    ++number;
    if (words.empty()) continue;
    Word place = words[0];
    try {
      Column column;
      column.name = words[0].text;
      if (!IsName(column.name)) throw Failure("'" + column.name + "' is not a name");
      for (const Column& other : schema.columns_)
        if (other.name == column.name) throw Failure("column '" + column.name + "' is there already");
      if (words.size() < 2) throw Failure("column '" + column.name + "' has no type");
      place = words[1];
      column.type = FindType(words[1].text);
      if (!IsUsable(column.type)) throw Failure("values of type " + words[1].text + " cannot be stored yet");
      for (unsigned long i = 2; i < words.size(); ++i) {
        place = words[i];
        ApplyOption(column, words[i].text);
      }
      schema.columns_.push_back(column);
    } catch (const Failure& failure) {
      throw FailureAt(file, number, place.column, failure.what());
    }
  }
  if (schema.columns_.empty()) throw FailureAt(file, 1, 1, "the schema names no column");
  return schema;
}

Schema Schema::Read(const std::string& file) { return Parse(ReadFile(file), file); }

std::string Schema::Text() const {
  std::string text;
  for (const Column& column : columns_) {
    text += column.name + " " + Manager().NameGet(column.type, nullptr);
    if (column.nullable) text += " nullable";
    if (column.type == kStringTypeId) {
      text += " language=" + std::to_string(column.style.language);
      if (column.style.codeSet) text += " codeset=" + std::to_string(column.style.codeSet);
    }
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

void Record::Split(const Schema& schema, std::string_view bytes, std::vector<Field>& fields) {
  fields.resize(schema.Columns().size());
  auto field = fields.begin();
  for (const Column& column : schema.Columns()) {
    bool nullByte = column.HasNullByte();
    field->isNull = false;
    field->image.clear();
    if (nullByte) {
      if (bytes.empty() || static_cast<unsigned char>(bytes[0]) > 1)
        throw Failure("attribute '" + column.name + "' is damaged");
      field->isNull = bytes[0] == 1;
      bytes.remove_prefix(1);
    }
    if (!field->isNull) {
      unsigned long size = ImageSize(column.type, bytes);
      if (size == 0) throw Failure("attribute '" + column.name + "' is damaged");
      field->image.assign(bytes.data(), size);
      bytes.remove_prefix(size);
      if (column.nullable && !nullByte) field->isNull = field->image == NullImage(column.type);
    }
    ++field;
  }
  if (!bytes.empty()) throw Failure("there are bytes behind the last attribute");
}

void Record::Append(std::string& bytes, const Column& column, const Field& field) {
  if (column.HasNullByte()) bytes += field.isNull ? '\1' : '\0';
  if (!field.isNull)
    bytes += field.image;
  else if (!column.HasNullByte())
    bytes += NullImage(column.type);
}

std::string ReadFile(const std::string& path) {
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  std::string text;
  char piece[65536];
  unsigned long n = 0;
  while (file && (n = std::fread(piece, 1, sizeof piece, file.get())) > 0) text.append(piece, n);
  if (!file || std::ferror(file.get())) throw Failure(path + ": cannot be read");
  return text;
}

}  // namespace nxtm
