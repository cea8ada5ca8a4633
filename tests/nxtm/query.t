Conditions that do not parse say where, and what was expected there.

  $ printf 'word NxString\nn long\n' >s
  $ printf 'a,1\nb,2\n' >d
  $ nxtm import s d store >log
  $ nxtm query store 'word'
  nxtm: the condition, at character 5: expected =, !=, <, <=, >, >= or 'is', found the end
  [2]
  $ nxtm query store 'wort = 1'
  nxtm: the condition, at character 1: there is no attribute 'wort' (word, n)
  [2]
  $ nxtm query store 'word = '
  nxtm: the condition, at character 8: expected a value, found the end
  [2]
  $ nxtm query store 'word = "a'
  nxtm: the condition, at character 8: expected a closing quote for the text, found '"a'
  [2]
  $ nxtm query store 'n = 1 n = 2'
  nxtm: the condition, at character 7: expected 'and', 'or' or the end, found 'n = 2'
  [2]
  $ nxtm query store '(n = 1'
  nxtm: the condition, at character 7: expected ')', found the end
  [2]
  $ nxtm query store 'n = one'
  nxtm: the condition, at character 5: 'one' is not a whole number
  [2]
  $ nxtm query store 'n is nil'
  nxtm: the condition, at character 6: expected 'null', found 'nil'
  [2]
  $ nxtm query store 'word = "äöü" und'
  nxtm: the condition, at character 14: expected 'and', 'or' or the end, found 'und'
  [2]
  $ nxtm query store "$(printf '%101s' | tr ' ' '(')"
  nxtm: the condition, at character 102: expected at most 100 parentheses inside of each other, found the end
  [2]
  $ nxtm query store 'n = 1 ignoring case'
  nxtm: the condition, at character 7: expected 'and', 'or' or the end, found 'ignoring cas'
  [2]
  $ nxtm query store 'word = a ignoring cases'
  nxtm: the condition, at character 19: expected 'case', 'accents', 'symbols' or 'spaces', found 'cases'
  [2]
