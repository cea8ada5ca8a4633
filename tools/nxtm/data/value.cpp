// Values as text and as stored images.

#include "data/value.h"

#include <strings.h>

#include <charconv>
#include <cstring>
#include <utility>

#include "data/failure.h"
#include "data/utf8.h"
#include "nxlang.h"

namespace nxtm {

namespace {

/// The bytes from which the type manager tells the size of an image.
unsigned long SizeHead(Kind kind) {
  constexpr unsigned long kStringHead = 6, kAlphabeticHead = 4, kBlobHead = 8;
  return kind == Kind::kText         ? kStringHead
         : kind == Kind::kAlphabetic ? kAlphabeticHead
         : kind == Kind::kBlob       ? kBlobHead
                                     : 0;
}

/// Whether an image of the stated size holds what is in it: a text or blob that does not
/// end in its own image would be read beyond it.
bool IsClosed(Kind kind, std::string_view image, unsigned char format) {
  switch (kind) {
    case Kind::kText:
      return image[image.size() - 1] == '\xFF' && image[image.size() - 2] == 0;
    case Kind::kAlphabetic:
      return image.back() == 0;
    case Kind::kBlob: {
      const unsigned long head = SizeHead(kind);
      long length = 0;
      LongStore(&length, image.data() + sizeof length, format, 1);
      return image.size() == head + (length < 0 ? 0 : static_cast<unsigned long>(length)) && length >= -1;
    }
    default:
      return true;
  }
}

/// A text as the library's scan functions take it: its bytes as they stand.
NxString BytesAsString(std::string_view text) {
  constexpr unsigned long kLongest = 511;  // what the print functions write
  if (text.size() > kLongest) throw Failure("the text is longer than " + std::to_string(kLongest) + " bytes");
  return NxString(std::string(text).c_str());
}

std::string BytesOf(const NxString& text) {
  return std::string(text.StrGet(), text._nSize > 0 ? std::strlen(text.StrGet()) : 0);
}

std::string PrintUnder(char type, void* value, const char* format) {
  NxString text(kCodeSetLatin1, 1);
  Manager().PrintToNxString(type, text, value, format, 1);
  return IsText(type) ? Utf8OfString(text) : BytesOf(text);
}

/// Refuses a format with other directives than its type's.
void RequireDirectives(const char* type, const std::string& format, const std::string& directives) {
  if (directives.empty()) throw Failure(std::string("values of type ") + type + " take no format");
  bool any = false;
  for (unsigned long i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    const char directive = ++i < format.size() ? format[i] : '\0';
    if (directive == '%') continue;
    any = directives.find(directive) != std::string::npos;
    if (!any)
      throw Failure("'" + format.substr(i - 1, 2) + "' is no directive of " + type +
                    ", which has % and one of " + directives);
    if (directive == 'h' || directive == 'l') ++i;  // of the next field; a letter follows
  }
  if (!any) throw Failure("the format '" + format + "' has no directive");
}

}  // namespace

NxTypeMgr& Manager() {
  static NxTypeMgr manager(5);
  return manager;
}

char FindType(const std::string& name) {
  char id = 0;
  if (Manager().Name2NxTypeId(name.c_str(), id) == 0) return id;
  throw Failure("there is no type '" + name + "'; `nxtm types` lists them");
}

char NullableTypeOf(char type) {
  const char* nullable = FormOf(type).nullable;
  return nullable ? FindType(nullable) : type;
}

bool IsText(char type) { return IsUsable(type) && IsText(FormOf(type).kind); }

Box::Box(char type)
    : type_(type),
      value_(Manager().DefaultValue(type, 1, 0)),
      fixedSize_(Manager().IsFixed(type) ? ImageSize(kFormatNative) : 0) {}

unsigned long Box::ImageSize(unsigned char format) const {
  return static_cast<unsigned>(Manager().DiskLenGet(type_, value_, format, 1, kFormatMemory));
}

void Box::Store(Image& bytes, unsigned char format) const {
  char image[16];
  if (fixedSize_ != 0 && fixedSize_ <= sizeof image) {
    Manager().Store(type_, image, value_, format, 1);
    bytes.append(image, fixedSize_);
    return;
  }
  const unsigned long at = bytes.size();
  bytes.resize(at + ImageSize(format));
  Manager().Store(type_, bytes.data() + at, value_, format, 1);
}

Converter::Converter(char type, TextStyle style)
    : type_(type),
      form_(FormOf(type)),
      style_(std::move(style)),
      box_(std::make_unique<Box>(type)),
      nullFlag_(nullptr) {
  const char base = FindType(form_.type);
  if (base != type) nullFlag_ = static_cast<signed char*>(box_->Get()) + Manager().MemLenGet(base, 1);
  if (!style_.format.empty())
    RequireFit();
  else if (form_.format)
    style_.format = form_.format;
}

/// A format that does not fit its type prints every value alike.
void Converter::RequireFit() {
  if (form_.directives) return RequireDirectives(form_.type, style_.format, form_.directives);
  std::string printed[2];
  for (const char* value : {"1", "65"}) {
    form_.parse(box_->Get(), value, style_, Pattern::kNone);
    if (nullFlag_) *nullFlag_ = 0;
    printed[0].swap(printed[1]);
    printed[0] = Print();
  }
  if (printed[0] == printed[1])
    throw Failure("the format '" + style_.format + "' does not fit type " + form_.type);
}

void Converter::Parse(std::string_view text, Pattern pattern) {
  if (!style_.format.empty() && pattern == Pattern::kNone) {
    NxString bytes = BytesAsString(text);
    Manager().ScanFromNxString(type_, box_->Get(), bytes, style_.format.c_str(), 1);
    return;
  }
  form_.parse(box_->Get(), text, style_, pattern);
  if (nullFlag_) *nullFlag_ = 0;
}

std::string Converter::Print() const {
  return style_.format.empty() ? form_.print(box_->Get())
                               : PrintUnder(type_, box_->Get(), style_.format.c_str());
}

void Converter::Append(Image& bytes, std::string_view text, unsigned char format, Pattern pattern) {
  // A pattern is written as without a format, which could not read it.
  if (form_.kind != Kind::kDate || pattern == Pattern::kNone || text.find('*') == std::string_view::npos)
    pattern = Pattern::kNone;
  const unsigned long at = bytes.size();
  Parse(text, pattern);
  box_->Store(bytes, format);
  const bool formatted = !style_.format.empty() && pattern == Pattern::kNone;
  if (!formatted && form_.kind != Kind::kAlphabetic) return;
  const TextOfValue back = ToText(std::string_view(bytes).substr(at), format);
  if (!formatted && back.text != text) throw Failure("the type has no place for a character of the text");
  if (back.isNull) throw Failure(Shown(text) + " stands for null");
  if (back.text != text)
    throw Failure(Shown(text) + " is no " + form_.type + " under '" + style_.format + "': it reads as " +
                  Shown(back.text));
}

Image Converter::ToImage(std::string_view text, unsigned char format, Pattern pattern) {
  Image image;
  Append(image, text, format, pattern);
  return image;
}

void Converter::AppendImage(Image& bytes, std::string_view text) {
  if (form_.kind == Kind::kText && AppendStringImage(bytes, text, style_.codeSet, style_.language)) return;
  Append(bytes, text, kFormatNative, Pattern::kNone);
}

TextOfValue Converter::ToText(std::string_view image, unsigned char format) {
  const unsigned long size = ImageSize(type_, image, format);
  if (size == 0 || size != image.size())
    throw Failure("not the image of one " + std::string(Manager().NameGet(type_, nullptr)) + " value");
  Manager().Load(type_, box_->Get(), const_cast<char*>(image.data()), format, 1);
  if (Manager().IsNullValue(type_, box_->Get())) return {"", true};
  return {Print(), false};
}

Image NullImage(char type, unsigned char format) {
  Box box(type);
  Manager().SetNullValue(type, box.Get());
  Image image;
  box.Store(image, format);
  return image;
}

unsigned long ImageSize(char type, std::string_view data, unsigned char format) {
  return ImageSize(type, FormOf(type).kind, data, format);
}

unsigned long ImageSize(char type, Kind kind, std::string_view data, unsigned char format) {
  const unsigned long head = SizeHead(kind);
  if (data.size() < head) return 0;
  const auto size =
      static_cast<unsigned long>(Manager().DiskLenGet(type, const_cast<char*>(data.data()), format, 1, 0));
  if (size < head || size > data.size()) return 0;
  return IsClosed(kind, data.substr(0, size), format) ? size : 0;
}

std::string PrintedText(char type, const std::string& value, const TextStyle& style, const char* format) {
  Converter converter(type, style);
  const Image image = converter.ToImage(value);
  Box box(type);
  Manager().Load(type, box.Get(), const_cast<char*>(image.data()), kFormatNative, 1);
  return PrintUnder(type, box.Get(), format);
}

std::string ScannedText(char type, const std::string& text, const TextStyle& style, const char* format) {
  Box box(type);
  NxString bytes = IsText(type) ? StringOfUtf8(text, style.codeSet, style.language) : BytesAsString(text);
  Manager().ScanFromNxString(type, box.Get(), bytes, format, 1);
  Image image;
  box.Store(image, kFormatNative);
  const TextOfValue value = Converter(type, style).ToText(image);
  return value.isNull ? PrintUnder(type, box.Get(), format) : value.text;
}

std::string_view BytesOfBlob(std::string_view image) { return image.substr(SizeHead(Kind::kBlob)); }

std::string Hex(std::string_view bytes, const char* between) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * (2 + std::strlen(between)));
  for (unsigned char byte : bytes) {
    if (!text.empty()) text += between;
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

Image FromHex(std::string_view text) {
  Image bytes;
  bytes.reserve(text.size() / 2);
  int high = -1;
  for (unsigned long i = 0; i < text.size(); ++i) {
    if (text[i] == ' ') continue;
    int digit = 0;
    if (std::from_chars(&text[i], &text[i] + 1, digit, 16).ec != std::errc())
      throw Failure("character " + std::to_string(i + 1) + " of " + Shown(text) +
                    " is not a hexadecimal digit");
    if (high >= 0) bytes += static_cast<char>(high << 4 | digit);
    high = high < 0 ? digit : -1;
  }
  if (high >= 0) throw Failure(Shown(text) + " has an odd number of hexadecimal digits");
  return bytes;
}

unsigned char FindLanguage(const std::string& name) {
  for (unsigned char number = 0; number < kPlainOrderSelector; ++number) {
    const NxLanguage* language = NxLanguageContext::QueryLanguage(number);
    if (language->number == number &&
        (strcasecmp(language->name, name.c_str()) == 0 || std::to_string(number) == name))
      return number;
  }
  throw Failure("there is no language '" + name + "'");
}

unsigned char FindCodeSet(const std::string& number) {
  for (unsigned char codeSet : {0, 1, 2, 3, 4, 253})
    if (number == std::to_string(codeSet)) return codeSet;
  throw Failure("there is no code set '" + number + "' (0, 1, 2, 3, 4 or 253)");
}

}  // namespace nxtm
