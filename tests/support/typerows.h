// The table of types, golden/types.txt, which says what its columns are.
#ifndef TYPEROWS_H
#define TYPEROWS_H

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct TypeRow {
  struct Field {
    unsigned long offset, width;
  };
  char id;
  std::string name;
  unsigned long size;
  bool fixed;
  std::vector<Field> image;
  bool bigEndian;  // under every format
  std::string order, stored, null, traits, format;

  bool Has(char trait) const { return traits.find(trait) != std::string::npos; }
  bool Nullable() const { return null != "-"; }
  /// What SetNull makes of a value.
  void MakeNull(unsigned char* value) const {
    for (unsigned long i = 0; i < size; ++i) {
      const std::string byte = null.substr(2 * i, 2);
      if (byte != "..")
        value[i] = byte == "zz" ? 0 : static_cast<unsigned char>(std::stoi(byte, nullptr, 16));
    }
  }
  unsigned long ImageSize() const {
    unsigned long bytes = 0;
    for (const Field& field : image) bytes += field.width;
    return bytes;
  }
};

inline TypeRow ReadTypeRow(const std::string& line) {
  std::istringstream in(line);
  TypeRow row;
  int id;
  std::string image;
  in >> id >> row.name >> row.size;
  row.fixed = in.peek() != '&';
  if (!row.fixed) in.get();
  in >> image >> row.order >> row.stored >> row.null >> row.traits;
  row.id = static_cast<char>(id);
  row.bigEndian = image.back() == '!';
  std::istringstream fields(image);
  TypeRow::Field field;
  for (char colon; fields >> field.offset >> colon >> field.width; fields.get()) row.image.push_back(field);
  if (row.stored == "=") row.stored = row.order;
  std::getline(in, row.format);
  row.format = row.format.substr(row.format.find('"') + 1);
  row.format.pop_back();
  return row;
}

inline std::vector<TypeRow> AllTypeRows() {
  std::vector<TypeRow> rows;
  std::ifstream in(NX_SOURCE_DIR "/tests/golden/types.txt");
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') rows.push_back(ReadTypeRow(line));
  return rows;
}

#endif
