Conditions that do not parse say where, and what was expected there.

  $ printf 'word NxString\nn long\n' >s
  $ printf 'a,1\nb,2\n' >d
  $ nxtm import s d store >log
  $ nxtm query store 'word'
  nxtm: the condition, at character 5: expected =, !=, <, <=, >, >=, 'in', 'between' or 'is', found the end
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
  nxtm: the condition, at character 102: expected at most 100 conditions inside of each other, found the end
  [2]
  $ nxtm query store 'n = 1 ignoring case'
  nxtm: the condition, at character 7: expected 'and', 'or' or the end, found 'ignoring cas'
  [2]
  $ nxtm query store 'word = a ignoring cases'
  nxtm: the condition, at character 19: expected 'case', 'accents', 'symbols' or 'spaces', found 'cases'
  [2]
  $ nxtm query store 'n in 1'
  nxtm: the condition, at character 6: expected '(', found '1'
  [2]
  $ nxtm query store 'n in (1, 2'
  nxtm: the condition, at character 11: expected ',' or ')', found the end
  [2]
  $ nxtm query store 'n between 1 or 2'
  nxtm: the condition, at character 13: expected 'and', found 'or 2'
  [2]

Lists, ranges and what is not: nulls match nothing but a test of null.

  $ printf 'word NxString\nn long nullable\nx double nullable\nt NxBoolean nullable\nb NxBlob nullable\n' >s5
  $ printf 'b,2,0.5,true,\nä,,,,00\na,10,-1e300,false,\n"c, d",-3,2,,"0102"\nA,2,,true,\n' >d5
  $ nxtm import s5 d5 five >log
  $ nxtm query five 'n in (2, -3)' --select word
  b
  "c, d"
  A
  $ nxtm query five 'word in ("a", "b") ignoring case, accents' --select word
  b
  ä
  a
  A
  $ nxtm query five 'n between -3 and 2' --select n
  2
  -3
  2
  $ nxtm query five 'not n between -3 and 2' --select n
  10
  $ nxtm query five 'not (n = 10 or n is null) and not word = "b"' --select word
  "c, d"
  A
  $ for index in n word; do nxtm index five $index >log; done
  $ nxtm query five 'n >= 2 and n < 10 and not n in (5, 6)' --select word,n --explain | grep -v estimated
  b,2
  A,2
  --   sort keys from 01 80 00 00 02
  --   below          01 80 00 00 0A
  --   2 entries read
  --   sort keys from 01 80 00 00 02
  --   below          01 80 00 00 0A
  --   2 entries read
  -- 2 of 5 records read, 2 found, * ms (glob)

Rows as they are asked for.

  $ nxtm query five 'word > ""' --order-by 'n desc, word' --header --select n,word
  n,word
  10,a
  2,A
  2,b
  -3,"c, d"
  ,ä
  $ nxtm query five 'word > ""' --order-by n --limit 2 --select n,word
  ,ä
  -3,"c, d"
  $ nxtm query five 'word > ""' --order-by b
  nxtm: 'b': blobs have no order
  [2]
  $ nxtm query five 'word > ""' --order-by 'n down'
  nxtm: 'n down': expected 'asc' or 'desc' behind the name
  [1]
  $ nxtm query five 'word > ""' --output json
  [
    {"word": "b", "n": 2, "x": 0.5, "t": true, "b": null},
    {"word": "ä", "n": null, "x": null, "t": null, "b": "00"},
    {"word": "a", "n": 10, "x": -1e+300, "t": false, "b": null},
    {"word": "c, d", "n": -3, "x": 2, "t": null, "b": "0102"},
    {"word": "A", "n": 2, "x": null, "t": true, "b": null}
  ]
  $ nxtm query five 'n = 77' --output json
  []
  $ nxtm query five 'n > 0' --output table --select word,x,n
  word  x        n
  b     0.5      2
  a     -1e+300  10
  A              2
  $ nxtm query five 'word > ""' --count --min word,n,x --max word --header
  count,min(word),min(n),min(x),max(word)
  5,a,-3,-1e+300,"c, d"
  $ nxtm query five 'n = 77' --max n,word
  ,
  $ nxtm query five 'n > 0' --count --output json
  nxtm: --count, --min and --max print one row of CSV and go with no other form of records
  [1]
  $ printf 'b NxInt64\nh long format=%%lx\nd NxDate format=%%Y\nt NxTime format=%%H\n' >s4
  $ printf '9007199254740992,10,2004,11\n-9007199254740993,ff,1999,12\n' >d4
  $ nxtm import s4 d4 four >log && nxtm query four 'b != 0' --output json
  [
    {"b": 9007199254740992, "h": "10", "d": "2004", "t": "11"},
    {"b": "-9007199254740993", "h": "ff", "d": "1999", "t": "12"}
  ]
  $ printf 'name NxString\nnote NxString\n' >s2; echo 'Görlitz,a note that is longer than the line' >d2
  $ nxtm import s2 d2 two >log
  $ script -qec "stty cols 20; nxtm query two 'name > a' --output table" /dev/null </dev/null | tr -d '\r'
  name     note
  Görlitz  a note tha\xe2\x80\xa6 (esc)
  $ seq 5000 | shuf --random-source=/dev/zero >d1; echo 'n long' >s1; nxtm import s1 d1 one >log
  $ nxtm query one 'n > 0' --order-by 'n desc' --limit 3
  5000
  4999
  4998
  $ nxtm query one 'n > 0' >/dev/full
  nxtm: the output cannot be written: No space left on device
  [3]
  $ nxtm query five 'n = 2' --output xml
  nxtm: 'xml' is no form of rows (csv, json, table)
  [1]

Records that are deleted are gone from the indexes, too.

  $ nxtm delete five 'n = 2'
  2 records deleted, 3 left
  $ nxtm query five 'word > ""' --select word,n
  ä,
  a,10
  "c, d",-3
  $ nxtm query five 'word = "b"'
  $ nxtm check five
  3 records: sound
  ordered index of word, 3 entries: sound
  ordered index of n, 2 entries: sound
  $ nxtm delete five 'n = 2'
  0 records deleted, 3 left
  $ nxtm info five | tail -3
  
  ordered index of word: 3 entries
  ordered index of n: 2 entries

What a text has in common with a pattern, and how it orders, is the same with an index.

  $ echo 'text NxString' >wide; echo 't NxCaseIString' >folding; echo é | nxtm import folding - folded >log; nxtm index folded t >>log
  $ nxtm query folded 't > "ßa"'; nxtm query folded 't > "ßa"' --scan
  \xc3\xa9 (esc)
  \xc3\xa9 (esc)
  $ printf 'Straße\nStrasse\n' | nxtm import wide - streets >>log
  $ nxtm query streets 'text = "Stra?e"'; nxtm query streets 'text = "Stra??e"'
  Stra\xc3\x9fe (esc)
  Strasse

Memory does not grow with the rows that are printed, and a limit ends the reading.

  $ small='prlimit --data=30000000'; ldd "$(command -v nxtm)" | grep -q libasan && small= || true  # it needs more
  $ flat() { $small "$@"; }
  $ seq 150000 | awk '{ printf "%s%0300d\n", $1, 0 }' | nxtm import wide - many >log
  $ for form in csv json table; do flat nxtm query many 'text > "1"' --output $form | wc -c; done
  45938895
  48188898
  45938900
  $ flat nxtm export many | wc -l
  150000
  $ nxtm query many 'text > "1"' --limit 3 --explain | grep found
  -- 3 of 150000 records read, 3 found, * ms (glob)

What is asked wrongly.

  $ nxtm qurey
  nxtm: there is no command 'qurey'; the nearest one is 'query'; see nxtm help
  [1]
  $ nxtm help qurey
  nxtm: there is no command 'qurey'; the nearest one is 'query'; see nxtm help
  [1]
  $ nxtm query five
  CONDITION is required
  Run with --help for more information.
  [1]
  $ nxtm help | grep -cE '^  (import|query|types|help) '
  4
  $ nxtm help | tail -3
  Exit status: 0 success, 1 a command line that is not right, 2 input that is not right,
  3 a store or file that is damaged or cannot be read or written, 4 a store on other
  machines that cannot be reached.
  $ nxtm help drop | grep -E -- 'Usage|--hash'
  Usage: nxtm drop [OPTIONS] STORE ATTRIBUTE
    --hash                      the one by hash, in place of the ordered one
  $ nxtm --version | grep -cE '^nxtm [0-9]+(\.[0-9]+)+$'
  1
  $ nxtm manual | grep -c '^.TP'
  22
  $ nxtm completion >complete && . ./complete && COMP_WORDS=(nxtm ind) COMP_CWORD=1 && _nxtm && echo ${COMPREPLY[@]}
  index
  $ COMP_WORDS=(nxtm help q) COMP_CWORD=2 && _nxtm && echo ${COMPREPLY[@]}
  query
  $ COMP_WORDS=(nxtm query --o) COMP_CWORD=2 && _nxtm && echo ${COMPREPLY[@]}
  --order-by --output
