// Conditions: the parser, and the test of one record.

#include "query/query.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "data/failure.h"

namespace nxtm {

namespace {

constexpr struct {
  std::string_view sign;
  unsigned short relation;
} kRelations[] = {{"!=", kRelationLess | kRelationGreater},
                  {"<>", kRelationLess | kRelationGreater},
                  {"<=", kRelationLess | kRelationEqual},
                  {">=", kRelationGreater | kRelationEqual},
                  {"=", kRelationEqual},
                  {"<", kRelationLess},
                  {">", kRelationGreater}};

std::string SignOf(unsigned short relation) {
  for (const auto& r : kRelations)
    if (r.relation == relation) return std::string(r.sign);
  return "";
}

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
    constexpr int kDeepest = 100;
    if (Accept("not")) {
      if (++depth_ > kDeepest) Expected("at most 100 conditions inside of each other");
      Condition inner = Factor();
      --depth_;
      Negate(inner);
      return inner;
    }
    if (AcceptSign('(')) {
      if (++depth_ > kDeepest) Expected("at most 100 conditions inside of each other");
      Condition inner = Either();
      if (!AcceptSign(')')) Expected("')'");
      --depth_;
      return inner;
    }
    return ReadTest();
  }

  /// Makes a condition select what it does not, but for the nulls that no comparison selects.
  static void Negate(Condition& condition) {
    constexpr unsigned short kAll = kRelationLess | kRelationEqual | kRelationGreater;
    Term& term = condition.term;
    if (condition.kind == Condition::Kind::kTerm) {
      if (term.relation == 0) term.wantNull = !term.wantNull;
      if (term.relation != 0) term.relation ^= kAll;
      term.text = "not " + term.text;
      return;
    }
    condition.kind = condition.kind == Condition::Kind::kAnd ? Condition::Kind::kOr : Condition::Kind::kAnd;
    for (Condition& part : condition.parts) Negate(part);
  }

  /// A value as it was written, and where.
  struct Value {
    std::string value, text;
    unsigned long at;
  };

  /// A test of one attribute; of several values one of several terms.
  Condition ReadTest() {
    const std::string name = PeekWord();
    if (name.empty()) Expected("an attribute, 'not' or '('");
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
      term.text = name + (term.wantNull ? " is null" : " is not null");
      Condition condition;
      condition.term = term;
      return condition;
    }
    Condition joined;
    joined.kind = Condition::Kind::kOr;
    std::vector<std::pair<unsigned short, Value>> comparisons;
    if (Accept("in")) {
      if (!AcceptSign('(')) Expected("'('");
      do comparisons.emplace_back(kRelationEqual, ReadValue(" \t\n(),"));
      while (AcceptSign(','));
      if (!AcceptSign(')')) Expected("',' or ')'");
    } else if (Accept("between")) {
      joined.kind = Condition::Kind::kAnd;
      comparisons.emplace_back(kRelationGreater | kRelationEqual, ReadValue());
      if (!Accept("and")) Expected("'and'");
      comparisons.emplace_back(kRelationLess | kRelationEqual, ReadValue());
    } else {
      const unsigned short relation = ReadRelation();
      comparisons.emplace_back(relation, ReadValue());
    }
    const unsigned long behind = at_;
    ReadOptions(term);
    const std::string options = text_.substr(behind, at_ - behind);
    for (const auto& [relation, value] : comparisons) {
      Condition part;
      part.term = term;
      part.term.relation = relation;
      TakeValue(part.term, value);
      part.term.text = name + ' ' + SignOf(relation) + ' ' + value.text + options;
      if (comparisons.size() == 1) return part;
      joined.parts.push_back(std::move(part));
    }
    return joined;
  }

  void ReadOptions(Term& term) {
    if (Accept("literally")) term.options |= kWildcardsOff;
    if (!IsText(schema_.Columns()[term.attribute].type) || !Accept("ignoring")) return;
    do term.options |= ReadIgnored();
    while (AcceptSign(','));
  }

  void TakeValue(Term& term, const Value& value) const {
    const Column& column = schema_.Columns()[term.attribute];
    const Pattern pattern = term.options & kWildcardsOff ? Pattern::kNone : Pattern::kFields;
    try {
      term.key = Converter(column.type, column.style).ToImage(value.value, kFormatNative, pattern);
    } catch (const Failure& failure) {
      Fail(value.at, failure.what());
    }
    // Without a "*" a field of -1 is a year like any other.
    if (FormOf(column.type).kind == Kind::kDate && value.value.find('*') == std::string::npos)
      term.options |= kWildcardsOff;
    term.inPlace = InPlaceOrder(column.type, term.options);
  }

  unsigned short ReadRelation() {
    SkipBlanks();
    unsigned long length = 0;
    const unsigned short relation = RelationAt(std::string_view(text_).substr(at_), length);
    if (relation == 0) Expected("=, !=, <, <=, >, >=, 'in', 'between' or 'is'");
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

  /// A quoted text, or what stands up to one of the characters that end it.
  Value ReadValue(const char* ends = " \t\n()") {
    SkipBlanks();
    if (at_ >= text_.size()) Expected("a value");
    const unsigned long start = at_;
    const char quote = text_[at_];
    if (quote != '"' && quote != '\'') {
      at_ = std::min(text_.find_first_of(ends, at_), text_.size());
      if (at_ == start) Expected("a value");
      const std::string value = text_.substr(start, at_ - start);
      return {value, value, start};
    }
    std::string value;
    for (++at_;; ++at_) {
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
        return {value, text_.substr(start, at_ - start), start};
      }
    }
  }

  const std::string& text_;
  const Schema& schema_;
  unsigned long at_ = 0;
  int depth_ = 0;
};

long Order(const Term& term, char type, std::string_view image) {
  if (term.inPlace) return term.inPlace(image.data(), term.key.data());
  int error = 0;
  return Manager().Cmp(type, image.size(), const_cast<char*>(image.data()), term.key.size(),
                       const_cast<char*>(term.key.data()), term.options, 1, kFormatNative, error);
}

bool TermMatches(const Term& term, char type, const Field& field) {
  if (term.relation == 0) return field.isNull == term.wantNull;
  if (field.isNull) return false;
  const long order = Order(term, type, field.image);
  if (order == 0) return term.relation & kRelationEqual;
  return term.relation & (order < 0 ? kRelationLess : kRelationGreater);
}

}  // namespace

unsigned short RelationAt(std::string_view text, unsigned long& length) {
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
