// Conditions: the parser, and the test of one record.

#include "query/query.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "data/failure.h"

namespace nxtm {

namespace {

/// Reads a condition from left to right.
class Parser {
 public:
  Parser(const std::string& text, const Schema& schema) : text_(text), schema_(schema) {}

  Condition Whole() {
    Condition condition = Either();
    SkipBlanks();
    if (at_ < text_.size()) Expected("'and', 'or' or the end");
    return condition;
  }

 private:
  [[noreturn]] void Expected(const std::string& what) const {
    // What stands there, up to a dozen characters, none of them cut.
    unsigned long end = std::min<unsigned long>(at_ + 12, text_.size());
    while (end < text_.size() && IsContinuation(text_[end])) ++end;
    Fail(at_, "expected " + what + ", found " +
                  (at_ < text_.size() ? "'" + text_.substr(at_, end - at_) + "'" : "the end"));
  }

  static bool IsContinuation(char c) { return (c & 0xC0) == 0x80; }

  /// Counts characters of UTF-8, not bytes.
  [[noreturn]] void Fail(unsigned long at, const std::string& reason) const {
    long before = std::count_if(text_.begin(), text_.begin() + static_cast<long>(at),
                                [](char c) { return !IsContinuation(c); });
    throw Failure("the condition, at character " + std::to_string(before + 1) + ": " + reason);
  }

  void SkipBlanks() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
  }

  static bool IsWordByte(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

  std::string PeekWord() {
    SkipBlanks();
    unsigned long end = at_;
    while (end < text_.size() && IsWordByte(text_[end])) ++end;
    return text_.substr(at_, end - at_);
  }

  bool Accept(const std::string& word) {
    if (PeekWord() != word) return false;
    at_ += word.size();
    return true;
  }

  bool AcceptSign(char sign) {
    SkipBlanks();
    if (at_ >= text_.size() || text_[at_] != sign) return false;
    ++at_;
    return true;
  }

  Condition Either() {
    return Joined(Condition::Kind::kOr, "or", [this] { return Both(); });
  }
  Condition Both() {
    return Joined(Condition::Kind::kAnd, "and", [this] { return Factor(); });
  }

  template <class Part>
  Condition Joined(Condition::Kind kind, const char* word, Part part) {
    Condition first = part();
    if (!Accept(word)) return first;
    Condition joined;
    joined.kind = kind;
    joined.parts.push_back(std::move(first));
    do joined.parts.push_back(part());
    while (Accept(word));
    return joined;
  }

  Condition Factor() {
    if (AcceptSign('(')) {
      constexpr int kDeepest = 100;
      if (++depth_ > kDeepest) Expected("at most 100 parentheses inside of each other");
      Condition inner = Either();
      if (!AcceptSign(')')) Expected("')'");
      --depth_;
      return inner;
    }
    Condition condition;
    condition.term = ReadTerm();
    return condition;
  }

  Term ReadTerm() {
    std::string name = PeekWord();
    unsigned long start = at_;
    if (name.empty()) Expected("an attribute or '('");
    Term term;
    try {
      term.attribute = schema_.Find(name);
    } catch (const Failure& failure) {
      Fail(at_, failure.what());
    }
    at_ += name.size();
    if (Accept("is")) {
      term.wantNull = !Accept("not");
      if (!Accept("null")) Expected("'null'");
    } else {
      ReadComparison(term);
    }
    term.text = text_.substr(start, at_ - start);
    while (std::isspace(static_cast<unsigned char>(term.text.back()))) term.text.pop_back();
    return term;
  }

  void ReadComparison(Term& term) {
    const Column& column = schema_.Columns()[term.attribute];
    term.relation = ReadRelation();
    SkipBlanks();
    unsigned long valueAt = at_;
    std::string value = ReadValue();
    if (Accept("literally")) term.options |= kWildcardsOff;
    if (IsText(column.type) && Accept("ignoring")) {
      do term.options |= ReadIgnored();
      while (AcceptSign(','));
    }
    try {
      const Pattern pattern = term.options & kWildcardsOff ? Pattern::kNone : Pattern::kFields;
      term.key = Converter(column.type, column.style).ToImage(value, kFormatNative, pattern);
      if (FormOf(column.type).kind == Kind::kDate) {
        // Without a "*" a field of -1 is a year like any other.
        if (pattern == Pattern::kNone || value.find('*') == std::string::npos) term.options |= kWildcardsOff;
      }
    } catch (const Failure& failure) {
      Fail(valueAt, failure.what());
    }
  }

  unsigned short ReadRelation() {
    SkipBlanks();
    unsigned long length = 0;
    const unsigned short relation = RelationAt(std::string_view(text_).substr(at_), length);
    if (relation == 0) Expected("=, !=, <, <=, >, >= or 'is'");
    at_ += length;
    return relation;
  }

  unsigned short ReadIgnored() {
    static const struct {
      const char* word;
      unsigned short option;
    } kOptions[] = {{"case", kIgnoreCase},
                    {"accents", kIgnoreAccents},
                    {"symbols", kSkipSymbols},
                    {"spaces", kSkipSpaces}};
    for (const auto& option : kOptions)
      if (Accept(option.word)) return option.option;
    Expected("'case', 'accents', 'symbols' or 'spaces'");
  }

  /// A quoted text, or what stands up to a blank or parenthesis.
  std::string ReadValue() {
    if (at_ >= text_.size()) Expected("a value");
    char quote = text_[at_];
    if (quote != '"' && quote != '\'') {
      unsigned long end = std::min(text_.find_first_of(" \t\n()", at_), text_.size());
      if (end == at_) Expected("a value");
      std::string value = text_.substr(at_, end - at_);
      at_ = end;
      return value;
    }
    std::string value;
    unsigned long start = at_++;
    for (;; ++at_) {
      if (at_ >= text_.size()) {
        at_ = start;
        Expected("a closing quote for the text");
      }
      if (text_[at_] != quote) {
        value += text_[at_];
      } else if (at_ + 1 < text_.size() && text_[at_ + 1] == quote) {
        value += quote;
        ++at_;
      } else {
        ++at_;
        return value;
      }
    }
  }

  const std::string& text_;
  const Schema& schema_;
  unsigned long at_ = 0;
  int depth_ = 0;
};

bool TermMatches(const Term& term, char type, const Field& field) {
  if (term.relation == 0) return field.isNull == term.wantNull;
  if (field.isNull) return false;
  int error = 0;
  long order = Manager().Cmp(type, field.image.size(), const_cast<char*>(field.image.data()), term.key.size(),
                             const_cast<char*>(term.key.data()), term.options, 1, kFormatNative, error);
  if (order == 0) return term.relation & kRelationEqual;
  return term.relation & (order < 0 ? kRelationLess : kRelationGreater);
}

}  // namespace

unsigned short RelationAt(std::string_view text, unsigned long& length) {
  static const struct {
    std::string_view sign;
    unsigned short relation;
  } kRelations[] = {{"!=", kRelationLess | kRelationGreater},
                    {"<>", kRelationLess | kRelationGreater},
                    {"<=", kRelationLess | kRelationEqual},
                    {">=", kRelationGreater | kRelationEqual},
                    {"=", kRelationEqual},
                    {"<", kRelationLess},
                    {">", kRelationGreater}};
  for (const auto& r : kRelations) {
    if (text.substr(0, r.sign.size()) != r.sign) continue;
    length = r.sign.size();
    return r.relation;
  }
  return 0;
}

Condition Condition::Parse(const std::string& text, const Schema& schema) {
  return Parser(text, schema).Whole();
}

bool Condition::Matches(const Schema& schema, RecordReader& record) const {
  const auto matches = [&](const Condition& part) { return part.Matches(schema, record); };
  switch (kind) {
    case Kind::kAnd:
      return std::all_of(parts.begin(), parts.end(), matches);
    case Kind::kOr:
      return std::any_of(parts.begin(), parts.end(), matches);
    default:
      return TermMatches(term, schema.Columns()[term.attribute].type, record[term.attribute]);
  }
}

}  // namespace nxtm
