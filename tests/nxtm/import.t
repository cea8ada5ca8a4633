What goes in comes out, in one import and in several.

  $ cat >s <<'END'
  > name NxString nullable language=german
  > age short nullable
  > born NxDate nullable
  > weight double
  > code NxCaseIString
  > END
  $ cat >good <<'END'
  > Müller,42,1982-03-15,81.5,abc
  > ,,,-0.25,
  > "",7,,1e+300,"x,""y"""
  > "zwei
  > Zeilen",-3,0001-01-01,0,Ä
  > Łódź 東京,0,,3,z
  > END
  $ nxtm import s good store
  5 records imported in * s (* a second), 0.00 MB in, store * MB (glob)
  $ nxtm export store | cmp - good
  $ nxtm import s good store >log
  $ nxtm export store | cmp - <(cat good good)
  $ (echo name,age,born,weight,code; cat good) >titled
  $ nxtm import --header s titled headed >log
  $ nxtm export --header headed | cmp - titled
  $ nxtm check store
  10 records: sound

Every form of CSV is read, and its own output is read as it is.

  $ there_and_back() {
  >   rm -f store again
  >   printf "$1" >schema
  >   printf "$2" >data
  >   nxtm import schema data store >log && nxtm export store >out && cat out
  >   nxtm import schema out again >log && nxtm export again | cmp - out
  > }
  $ there_and_back 'a NxString\nb long\n' 'x,1\r\ny,2\r\n'
  x,1
  y,2
  $ there_and_back 'a NxString\nb long\n' 'x,1\ry,2'
  x,1
  y,2
  $ there_and_back 'a NxString\nb long\n' '\xEF\xBB\xBFx,1\n\n\n y ,2\n'
  x,1
   y ,2
  $ there_and_back 'a NxString\nb long\n' '"1""\r\n,",1\n'
  "1""\r (esc)
  ,",1
  $ there_and_back 'a NxString\nb long\n' ',1\n"","2"\n'
  ,1
  ,2
  $ there_and_back 'a NxString nullable\nb long\n' ',1\n"",2\n'
  ,1
  "",2

A record of one null is an empty line, and one empty text a pair of quotes.

  $ there_and_back 'a NxString nullable\n' 'x\n\n""\n\n'
  x
  
  ""
  
  $ there_and_back 'a long nullable\n' '1\r\n\r\n2\r\n'
  1
  
  2
  $ there_and_back 'a NxString\n' 'x\n\n""\n'
  x
  ""

Bad rows are named by line and column, and change nothing.

  $ nxtm import s good store >log
  nxtm: store: has another schema than s:
  a NxString language=1
  
  [2]
  $ rm store
  $ nxtm import s good store >log
  $ nxtm index store name >log
  $ cp store before
  $ try() { printf "$1" >d; nxtm import s d store; nxtm import s d fresh 2>/dev/null; }
  $ try 'a,1,,0,x\nb,forty,,0,x\n'
  nxtm: d:2:3: column 'age': 'forty' is not a whole number
  [2]
  $ try 'a,40000,,0,x\n'
  nxtm: d:1:3: column 'age': '40000' is outside -32768 to 32767
  [2]
  $ try 'a,4\x000,,0,x\n'
  nxtm: d:1:3: column 'age': '4\x000' is not a whole number
  [2]
  $ for date in 2001-02-29 --1-02-30 2004--255-01 2004--1-01 2004-1; do try "a,1,$date,0,x\n"; done
  nxtm: d:1:5: column 'born': '2001-02-29' is not a date (year-month-day)
  nxtm: d:1:5: column 'born': '--1-02-30' is not a date (year-month-day)
  nxtm: d:1:5: column 'born': '2004--255-01' is not a date (year-month-day)
  nxtm: d:1:5: column 'born': '2004--1-01' is not a date (year-month-day)
  nxtm: d:1:5: column 'born': '2004-1' is not a date (year-month-day)
  [2]
  $ try 'a,1\0002,,0,x\n'; try 'a,1,2004-01-01\0,0,x\n'
  nxtm: d:1:3: column 'age': '1\x002' is not a whole number
  nxtm: d:1:5: column 'born': '2004-01-01\x00' is not a date (year-month-day)
  [2]
  $ for weight in '' nan 1e400 1e-400 0x10 ' 1'; do try "a,1,,$weight,x\n"; done
  nxtm: d:1:6: column 'weight': the field is empty and the column not nullable
  nxtm: d:1:6: column 'weight': 'nan' is not a number
  nxtm: d:1:6: column 'weight': '1e400' is out of range
  nxtm: d:1:6: column 'weight': '1e-400' is out of range
  nxtm: d:1:6: column 'weight': '0x10' is not a number
  nxtm: d:1:6: column 'weight': ' 1' is not a number
  [2]
  $ try '"a\r\nb",1,,0,x\r\nc,x,,0,x\r\n'
  nxtm: d:3:3: column 'age': 'x' is not a whole number
  [2]
  $ try '"a\nb",x,,0,x\n'
  nxtm: d:2:4: column 'age': 'x' is not a whole number
  [2]
  $ try 'a,1,,0,x\nb,1,,0\n'
  nxtm: d:2:7: column 'code' is missing
  [2]
  $ try 'a,1,,0,x,y\n'
  nxtm: d:1:10: the row has 6 fields, the schema 5
  [2]
  $ try 'a\xC3,1,,0,x\n'
  nxtm: d:1:1: column 'name': byte 2 of the text begins no UTF-8 sequence of a character up to U+FFFF
  [2]
  $ try 'a\xED\xA0\x80,1,,0,x\n'
  nxtm: d:1:1: column 'name': byte 2 of the text begins no UTF-8 sequence of a character up to U+FFFF
  [2]
  $ try 'a,1,,0,\xE6\x9D\xB1\n'
  nxtm: d:1:8: column 'code': a character of the text is not in code set 1
  [2]
  $ try 'a,1,,0,x\n"b,1,,0,x\n'
  nxtm: d:2:1: the quoted field does not end
  [2]
  $ try 'a"b,1,,0,x\n'
  nxtm: d:1:2: a quote is neither around the field nor doubled inside
  [2]
  $ text=$(printf '%65531s' | tr ' ' x)
  $ try "$text"x',1,,0,x\n'
  nxtm: d:1:1: column 'name': the text is longer than 65531 bytes
  [2]
  $ nxtm import --header s good store
  nxtm: good:1:1: there is no attribute 'M\xc3\xbcller' (name, age, born, weight, code) (esc)
  [2]
  $ nxtm import --header s /dev/null store
  nxtm: /dev/null:1:1: the row with the names of the columns is missing
  [2]
  $ nxtm import s . store
  nxtm: .: Is a directory
  [2]
  $ cmp store before
  $ ls fresh
  ls: cannot access 'fresh': No such file or directory
  [2]
  $ try "$text"',1,,0,x\n' | cut -d' ' -f1-3
  1 records imported
  1 records imported

What names the columns names each once, and leaves nullable ones out only.

  $ titles() { printf "$1" | nxtm import --header s - named; }
  $ titles 'name,age,weight,code,size\n'
  nxtm: standard input:1:22: there is no attribute 'size' (name, age, born, weight, code)
  [2]
  $ titles 'weight,code,weight\n'
  nxtm: standard input:1:13: column 'weight' is there already
  [2]
  $ titles '"name",weight\r\n'
  nxtm: standard input:1:14: column 'code', which is not nullable, is missing
  [2]
  $ titles 'weight,code\n1,a\n2\n'
  nxtm: standard input:3:2: column 'code' is missing
  [2]
  $ titles 'weight,code\n1,a,b\n'
  nxtm: standard input:2:5: the row has 3 fields, the header 2
  [2]
  $ titles 'weight,code\n1,a\nx,b\n'
  nxtm: standard input:3:1: column 'weight': 'x' is not a number
  [2]
  $ titles 'code,born,weight\na,,1\nb,2000-01-02,2\n' >log
  $ nxtm export named
  ,,,1,a
  ,,2000-01-02,2,b
  $ rm named

Other delimiters and encodings.

  $ cat >list <<'END'
  > a NxString
  > b NxString nullable
  > END
  $ read_as() { rm -f read; nxtm import list - read "$@" >log && nxtm export read; }
  $ printf 'x,y\t\nz\t"t\tu"\n' | read_as --delimiter '\t'
  "x,y",
  z,t\tu (esc)
  $ printf 'x,y|"z|"\n' | read_as --delimiter '|'
  "x,y",z|
  $ printf 'b\ta\n1\t2\n' | read_as --delimiter tab --header
  2,1
  $ for bad in '' '"' $'\n' ';;' §; do read_as --delimiter "$bad" </dev/null; done
  nxtm: the delimiter is one byte, or tab, and not ''
  nxtm: the delimiter is one byte, or tab, and not '"'
  nxtm: the delimiter is one byte, or tab, and not '\x0A'
  nxtm: the delimiter is one byte, or tab, and not ';;'
  nxtm: the delimiter is one byte, or tab, and not '\xc2\xa7' (esc)
  [2]
  $ for set in latin1 WINDOWS-1252 iso-8859-15 latin2; do printf '\xA4\xFC,\x80|\n' | read_as --encoding $set; done
  \xc2\xa4\xc3\xbc,\xc2\x80| (esc)
  \xc2\xa4\xc3\xbc,\xe2\x82\xac| (esc)
  \xe2\x82\xac\xc3\xbc,\xc2\x80| (esc)
  \xc2\xa4\xc3\xbc,\xc2\x80| (esc)
  $ read_as --encoding ebcdic </dev/null
  nxtm: there is no encoding 'ebcdic' (utf-8, latin1, iso-8859-1, windows-1252, latin9, iso-8859-15, latin2, iso-8859-2, utf-16, utf-16le, utf-16be)
  [2]
  $ printf '\377\376a\0\344\0,\0001\0\n\0' | read_as --encoding utf-16
  a\xc3\xa4,1 (esc)
  $ printf '\0a\0,\x20\xAC\0\n' | read_as --encoding UTF-16BE
  a,\xe2\x82\xac (esc)
  $ printf 'a\0,' | read_as --encoding utf-16le
  nxtm: standard input: not UTF-16: ends within a character
  [2]
  $ printf 'a\0\0\xDC' | read_as --encoding utf-16
  nxtm: standard input: not UTF-16: half of a surrogate pair as character 2
  [2]
  $ printf '\x3D\xD8\0\xDE,\0b\0' | read_as --encoding utf-16
  nxtm: standard input:1:1: column 'a': byte 1 of the text begins no UTF-8 sequence of a character up to U+FFFF
  [2]

Rows that are not right go to a file of their own, as they stand.

  $ rm -f store
  $ printf 'a,1,,0,x\nb,"for""ty",,0,x\r\n\nc"d",1,,0,"\ne,1,,0,x\nf,1,2000-02-30,0\n"g,1\n' >d
  $ nxtm import s d store --skip-bad bad
  nxtm: d:2:3: column 'age': 'for"ty' is not a whole number
  nxtm: d:4:2: a quote is neither around the field nor doubled inside
  nxtm: d:6:17: column 'code' is missing
  nxtm: d:7:1: the quoted field does not end
  nxtm: 4 rows set aside
  2 records imported in * (glob)
  $ nxtm export store
  a,1,,0,x
  e,1,,0,x
  $ diff d bad
  1d0
  < a,1,,0,x
  3d1
  < 
  5d2
  < e,1,,0,x
  [1]
  $ nxtm import s d store --skip-bad bad
  nxtm: bad: File exists
  [2]
  $ printf 'code,weight\na,1\nb,x\nc,\n' >d
  $ nxtm import --header s d store --skip-bad aside >log
  nxtm: d:3:3: column 'weight': 'x' is not a number
  nxtm: d:4:3: column 'weight': the field is empty and the column not nullable
  nxtm: 2 rows set aside
  $ sed s/x/2/ aside | nxtm import --header s - store --skip-bad none
  nxtm: standard input:3:3: column 'weight': the field is empty and the column not nullable
  nxtm: 1 rows set aside
  1 records imported in * (glob)
  $ rm none
  $ printf 'code,weight\na,1\n' | nxtm import --header s - store --skip-bad none >log
  $ printf 'code,weigh\na,1\n' | nxtm import --header s - store --skip-bad none
  nxtm: standard input:1:6: there is no attribute 'weigh' (name, age, born, weight, code)
  [2]
  $ nxtm import s . store --skip-bad none
  nxtm: .: Is a directory
  [2]
  $ ls none
  ls: cannot access 'none': No such file or directory
  [2]
  $ nxtm check store
  5 records: sound

Schemas that are none.

  $ schema() { printf "$1" >bad; nxtm import bad good new; }
  $ schema 'a NxStrin\n'
  nxtm: bad:1:3: there is no type 'NxStrin'; `nxtm types` lists them
  [2]
  $ schema 'a long\n# b\n a short\n'
  nxtm: bad:3:2: column 'a' is there already
  [2]
  $ schema 'a\n'
  nxtm: bad:1:1: column 'a' has no type
  [2]
  $ schema 'a-b long\n'
  nxtm: bad:1:1: 'a-b' is not a name
  [2]
  $ schema 'a long language=german\n'
  nxtm: bad:1:8: 'language=german' is no option of a column of type long
  [2]
  $ schema 'a NxString language=klingon\n'
  nxtm: bad:1:12: there is no language 'klingon'
  [2]
  $ schema 'a illegal\n'
  nxtm: bad:1:3: type illegal has no text form here
  [2]
  $ schema '# nothing\n'
  nxtm: bad:1:1: the schema names no column
  [2]
  $ nxtm import /dev/zero good new
  nxtm: /dev/zero has more than 1048576 bytes; at most 1048576 can be kept
  [2]
  $ nxtm import missing good new
  nxtm: missing: No such file or directory
  [2]
  $ nxtm import s missing new
  nxtm: missing: No such file or directory
  [2]

Stores that are none.

  $ printf '%20000s' z >other
  $ : >empty
  $ nxtm check other
  nxtm: other: not a store
  [2]
  $ nxtm export empty
  nxtm: empty: not a store
  [2]
  $ nxtm query . 'a = b'
  nxtm: .: not a store
  [2]
  $ nxtm check nowhere
  nxtm: nowhere: there is no such store
  [2]
