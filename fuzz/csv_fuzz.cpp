// CSV of any bytes, and its fields as texts of every type: the rows do not depend on the
// pieces that the source comes in, and the image that a field gets in a record is that of
// its text alone.

#include <map>
#include <string>
#include <vector>

#include "data/csvfile.h"
#include "data/utf8.h"
#include "data/value.h"
#include "input.h"
#include "nxlang.h"

namespace {

using nxtm::CsvField;
using nxtm::CsvReader;
using nxtm::Image;

struct Row {
  std::vector<std::string> fields;  // null ones are "null", others begin with "="
  std::string raw, failure;
  bool operator==(const Row& other) const {
    return fields == other.fields && raw == other.raw && failure == other.failure;
  }
};

std::vector<Row> RowsOf(const std::string& text, nxtm::CsvForm form, unsigned long piece) {
  unsigned long at = 0;
  const auto source = [&](char* room, unsigned long size) {
    const unsigned long n = text.copy(room, size, at);
    at += n;
    return n;
  };
  CsvReader reader(source, "f", form, piece);
  std::vector<Row> rows;
  for (bool more = true; more;) {
    Row row;
    try {
      more = reader.Next();
      for (const CsvField& field : reader.Fields())
        row.fields.push_back(field.isNull ? "null" : "=" + std::string(field.text));
      if (more) row.failure = reader.FailureOf(row.fields.size(), "end").what();
    } catch (const nxtm::BadRow& failure) {
      row.failure = failure.what();
      row.fields.clear();
    }
    row.raw = reader.Raw();
    if (more) rows.push_back(row);
  }
  return rows;
}

/// The fields as the tools write them.
std::string TextOf(const std::vector<Row>& rows) {
  std::string text;
  for (const Row& row : rows) {
    if (row.fields.empty()) continue;  // a bad row
    for (unsigned long i = 0; i < row.fields.size(); ++i)
      text += (i ? "," : "") + nxtm::CsvText(row.fields[i].substr(1), row.fields[i] == "null");
    text += '\n';
  }
  return text;
}

void RequireRows(const std::string& text, nxtm::CsvForm form, unsigned long piece) {
  const std::vector<Row> rows = RowsOf(text, form, CsvReader::kPiece);
  Require(rows == RowsOf(text, form, piece));
  form.emptyLine = nxtm::EmptyLine::kNullRow;
  std::string whole;
  std::vector<std::vector<std::string>> fields, again;
  for (const Row& row : RowsOf(text, form, piece)) {
    whole += row.raw;
    if (!row.fields.empty()) fields.push_back(row.fields);
  }
  Require(whole == text.substr(text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0));
  for (const Row& row : RowsOf(TextOf(RowsOf(text, form, piece)), {',', form.emptyLine}, piece))
    again.push_back(row.fields);
  Require(fields == again);
}

/// The image, or why there is none.
template <class Append>
std::string ImageBy(Append append) {
  const std::string before = "before";
  Image bytes = before;
  try {
    append(bytes);
  } catch (const nxtm::Failure& failure) {
    return std::string("failure: ") + failure.what();
  }
  Require(bytes.compare(0, before.size(), before) == 0);
  return "=" + bytes.substr(before.size());
}

void RequireImage(nxtm::Converter& converter, const std::string& text) {
  const auto asField = [&](std::string_view field) {
    return ImageBy([&](Image& bytes) { converter.AppendImage(bytes, field); });
  };
  const std::string image = asField(text);
  Require(image == ImageBy([&](Image& bytes) { bytes += converter.ToImage(text); }));
  if (image[0] == '=') Require(asField(converter.ToText(image.substr(1)).text) == image);
}

/// Converters of all that a schema can say of a column, but for formats.
std::vector<nxtm::Converter>& Converters() {
  static std::vector<nxtm::Converter> converters = [] {
    std::vector<nxtm::Converter> made;
    for (char type = 0; nxtm::Manager().IsValidType(type); ++type)
      if (nxtm::IsUsable(type) && nxtm::FormOf(type).kind != nxtm::Kind::kBlob) made.emplace_back(type);
    for (const unsigned char codeSet : {1, 2, 3, 4, 253})
      made.emplace_back(kStringTypeId, nxtm::TextStyle{codeSet, 2, "", ""});
    made.emplace_back(nxtm::FindType("NxDate"), nxtm::TextStyle{0, 1, "%d.%m.%Y", ""});
    made.emplace_back(nxtm::FindType("long"), nxtm::TextStyle{0, 1, "%08lx", ""});
    return made;
  }();
  return converters;
}

/// A text of an encoding is kept in the code set of that encoding as it stands.
void RequireDecoded(const std::string& text) {
  static std::map<unsigned char, nxtm::Decoder> decoders = {
      {kCodeSetLatin1, nxtm::Decoder("latin1")},
      {kCodeSetWindows1252, nxtm::Decoder("windows-1252")},
      {kCodeSetLatin9, nxtm::Decoder("latin9")},
      {kCodeSetLatin2, nxtm::Decoder("latin2")}};
  constexpr unsigned long kHead = 4, kEnd = 2;
  if (text.find('\0') != std::string::npos) return;
  for (auto& [codeSet, decoder] : decoders) {
    nxtm::Converter converter(kStringTypeId, {codeSet, 1, "", ""});
    const Image image = converter.ToImage(decoder.ToUtf8(text));
    Require(image.substr(kHead, image.size() - kHead - kEnd) == text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  const unsigned char shape = in.Byte();
  const unsigned long piece = 4 + in.Byte();
  unsigned long left = in.Byte() % 8;  // fields before the one that is tried
  const Block bytes = in.Rest();
  const std::string text(reinterpret_cast<const char*>(bytes.Data()), bytes.Size());
  nxtm::CsvForm form;
  form.delimiter = ",;\t|"[shape % 4];
  if (shape & 4) form.emptyLine = nxtm::EmptyLine::kNullRow;
  RequireRows(text, form, piece);
  for (const Row& row : RowsOf(text, form, piece))
    for (const std::string& field : row.fields) {
      if (field == "null" || left-- != 0) continue;
      for (nxtm::Converter& converter : Converters()) RequireImage(converter, field.substr(1));
      RequireDecoded(field.substr(1));
    }
  return 0;
}
