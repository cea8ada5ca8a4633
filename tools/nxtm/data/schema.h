/// Schemas of the workbench: the columns of a table, one a line:
///
///   # the cities
///   name        NxString  language=german
///   population  long      nullable
///   founded     NxDate    format="%d.%m.%Y"
///   codes       NxString  nullable codeset=253
///
/// A column's name is letters, digits and "_". A quoted word may hold blanks; a quote in
/// it is doubled. A nullable column of a scalar is stored as the scalar's nullable type;
/// of another type without a null state, with a byte before its image: 1 for null (no
/// image follows), 0 otherwise.
#ifndef NXTM_SCHEMA_H
#define NXTM_SCHEMA_H

#include <string>
#include <vector>

#include "data/value.h"

namespace nxtm {

struct Column {
  std::string name;
  char type = 0;  // of its images: of a nullable scalar the nullable type
  bool nullable = false;
  TextStyle style;
  Image nullImage;  // of the null state of a nullable column's type; empty where it has none
  Kind kind = Kind::kPlain;
  unsigned long imageSize = 0;  // of its images where all have one size, else 0

  /// Whether a byte before the image tells null.
  bool HasNullByte() const { return nullable && nullImage.empty(); }
};

class Schema {
 public:
  /// Throws a Failure with file, line and column.
  static Schema Parse(const std::string& text, const std::string& file);
  static Schema Read(const std::string& file);

  /// The text that Parse reads back as this schema.
  std::string Text() const;
  const std::vector<Column>& Columns() const { return columns_; }
  /// The place of a column; a Failure names the columns when there is none.
  unsigned long Find(const std::string& name) const;

 private:
  std::vector<Column> columns_;
};

/// A converter for every column; files that blobs name are looked for in the folder.
std::vector<Converter> ConvertersOf(const Schema& schema, const std::string& folder = "");

/// One attribute where it lies in a record. A null one may have an image, too.
struct Field {
  std::string_view image;
  bool isNull = false;
};

/// A record is the images of its attributes one after another.
class Record {
 public:
  /// Takes the attribute of a column off the front of a record's bytes. Throws a Failure
  /// that names the attribute whose image is damaged.
  static Field Take(const Column& column, std::string_view& bytes);
  /// Appends what stands before an attribute's image to a record under construction.
  static void AppendHead(std::string& bytes, const Column& column);
  /// Appends an attribute that is null.
  static void AppendNull(std::string& bytes, const Column& column);
};

/// Takes a record apart as far as it is asked for, where it lies.
class RecordReader {
 public:
  explicit RecordReader(const Schema& schema) : columns_(schema.Columns()), fields_(columns_.size()) {}

  /// Begins with another record, whose bytes must stay.
  void Begin(std::string_view record) {
    rest_ = record;
    taken_ = 0;
  }
  const Field& operator[](unsigned long attribute) {
    if (taken_ <= attribute) TakeUpTo(attribute);
    return fields_[attribute];
  }
  /// All of them. Throws a Failure for bytes behind the last one, too.
  const std::vector<Field>& All();

 private:
  void TakeUpTo(unsigned long attribute);

  const std::vector<Column>& columns_;
  std::string_view rest_;
  std::vector<Field> fields_;
  unsigned long taken_ = 0;  // of them
};

}  // namespace nxtm

#endif
