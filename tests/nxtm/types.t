Every date, time, reference and blob is stored, loaded, compared, hashed, keyed and bounded.

  $ for value in 'NxDateTime 2004-03-15T13:45:07' 'd_Date 2004-03-15' 'd_Time 13:45:07.25+02:00' \
  >   'd_Timestamp 1999-12-31T00:00:00-05:30' 'd_Interval 93784.5' 'NxBlob 070809' \
  >   'NxObjId (1-42#7)' 'NxClassId (12v2)' 'NxRef (3:1-42#7,_12)'; do
  >   set -- ${value%% *} "$(tr _ ' ' <<<"${value#* }")"
  >   for format in 1 2; do nxtm load $1 "$(nxtm store $1 "$2" --format $format | tee /dev/stderr)" --format $format; done
  >   nxtm compare $1 "$2" "$2"; nxtm hash $1 "$2"; nxtm key $1 "$2"; nxtm bounds $1 '<=' "$2"
  > done 2>&1
  D4 07 03 0F 0D 2D 07
  2004-03-15T13:45:07
  07 D4 03 0F 0D 2D 07
  2004-03-15T13:45:07
  0  2004-03-15T13:45:07 = 2004-03-15T13:45:07
  25AF0968
  D4 07 03 0F 0D 2D 07  (2004-03-15T13:45:07)
  lower     open
  upper     D4 07 03 0F 0D 2D 07  (2004-03-15T13:45:07)
  D4 07 03 0F
  2004-03-15
  07 D4 03 0F
  2004-03-15
  0  2004-03-15 = 2004-03-15
  1ACDDF63
  D4 07 03 0F  (2004-03-15)
  lower     open
  upper     D4 07 03 0F  (2004-03-15)
  02 00 0F 2D 07 19
  13:45:07.25+02:00
  02 00 0F 2D 07 19
  13:45:07.25+02:00
  0  13:45:07.25+02:00 = 13:45:07.25+02:00
  F9AA43B5
  02 00 0F 2D 07 19  (13:45:07.25+02:00)
  lower     open
  upper     02 00 0F 2D 07 19  (13:45:07.25+02:00)
  CF 07 0C 1F FB E2 FB E2 00 00
  1999-12-31T00:00:00-05:30
  07 CF 0C 1F FB E2 FB E2 00 00
  1999-12-31T00:00:00-05:30
  0  1999-12-31T00:00:00-05:30 = 1999-12-31T00:00:00-05:30
  DBA88533
  CF 07 0C 1F FB E2 FB E2 00 00  (1999-12-31T00:00:00-05:30)
  lower     open
  upper     CF 07 0C 1F FB E2 FB E2 00 00  (1999-12-31T00:00:00-05:30)
  40 2C B7 47
  93784.5
  47 B7 2C 40
  93784.5
  0  93784.5 = 93784.5
  D1F95740
  40 2C B7 47  (93784.5)
  lower     open
  upper     40 2C B7 47  (93784.5)
  07 00 00 00 03 00 00 00 07 08 09
  070809
  00 00 00 07 00 00 00 03 07 08 09
  070809
  0  070809 = 070809
  CC6C24FB
  07 00 00 00 03 00 00 00 07 08 09  (070809)
  lower     open
  upper     open
  07 00 00 00 2A 00 00 00 01 00
  (1-42#7)
  00 00 00 07 00 00 00 2A 00 01
  (1-42#7)
  0  (1-42#7) = (1-42#7)
  0C4F2C4F
  07 00 00 00 2A 00 00 00 01 00  ((1-42#7))
  lower     open
  upper     07 00 00 00 2A 00 00 00 01 00  ((1-42#7))
  0C 00 02 00
  (12v2)
  00 0C 00 02
  (12v2)
  0  (12v2) = (12v2)
  98D849F6
  0C 00 02 00  ((12v2))
  lower     open
  upper     open
  07 00 00 00 2A 00 00 00 01 00 03 00 0C 00
  (3:1-42#7, 12)
  00 00 00 07 00 00 00 2A 00 01 00 03 00 0C
  (3:1-42#7, 12)
  0  (3:1-42#7, 12) = (3:1-42#7, 12)
  46FC4108
  07 00 00 00 2A 00 00 00 01 00 03 00 0C 00  ((3:1-42#7, 12))
  lower     open
  upper     07 00 00 00 2A 00 00 00 01 00 03 00 0C 00  ((3:1-42#7, 12))

Nullable scalars: of the type itself, and of the scalar in a nullable column.

  $ nxtm store NxNull_short -- 1 -1; nxtm store NxNull_double --format 2 0.5; nxtm load NxNull_long '01 00 00 00 00'
  00 01 00
  00 FF FF
  00 3F E0 00 00 00 00 00 00
  {NULL}
  $ nxtm compare NxNull_char -- -1 1; nxtm print NxNull_NxInt64 255 --format %x; nxtm scan NxNull_int '{NULL}'
  -1  -1 < 1
  0xff
  {NULL}
  $ printf 'a long nullable\nb NxNull_float\nc short nullable format=%%04hd\nd NxBoolean nullable\ne enum nullable\n' >s
  $ printf '1,0.5,0007,true,3\n,,,,\n-2,-1e+30,-012,false,0\n' >d
  $ nxtm import s d store >log; nxtm export store | cmp - d
  $ for column in a b c e; do nxtm index store $column >log; done
  $ nxtm query store 'a > -5 and b < 1 and c >= 0007'
  1,0.5,0007,true,3
  $ nxtm query store 'a is null and e is null'
  ,,,,
  $ nxtm check store | tail -1
  ordered index of e, 2 entries: sound
  $ echo '1,0.5,7,true,3' >d; nxtm import s d store
  nxtm: d:1:7: column 'c': '7' is no short under '%04hd': it reads as '0007'
  [2]
  $ rm store store-lock

The library's texts, and what it reads.

  $ nxtm print NxDateTime 2004-03-15T13:45:07 --format '%A, %d. %B %y %H:%M'
  Monday, 15. March 04 13:45
  $ nxtm print NxInt64 255 --format '%x'
  0xff
  $ nxtm scan NxDateTime '2004-02-30' --format '%Y-%m-%d'
  0000-01-01T00:00:00
  $ nxtm scan NxInt64 0x1F --format %d
  -1
  $ nxtm print double 0.1 --format 'ldexp(%.17g, %d)'
  ldexp(0.80000000000000004, -3)
  $ nxtm print long 42 --format %s
  %s
  $ nxtm scan NxDateTime '{NULL}'
  {NULL}
  $ nxtm store long 1 --format 9
  nxtm: format bytes with bit 3 are forms in memory, not of images
  [2]
  $ nxtm store long 1 --format 255
  nxtm: format bytes with bit 3 are forms in memory, not of images
  [2]

A file of any usual spelling goes in and comes out.

  $ cat >s <<'END'
  > day NxDate format="%a %e.%b %Y"
  > "at" NxDateTime format="""%y"" %m/%d %I:%M:%S %p" # quotes in quotes
  > hex unsigned format=0x%08x
  > big NxInt64 nullable format=%X
  > char char format=%c
  > END
  $ cat >d <<'END'
  > Mon 15.Mar 2004,"""07"" 12/31 12:00:59 am",0xdeadbeef,0XFF,A
  > Sun 29.Feb 2004,"""70"" 01/01 11:59:59 pm",0x00000000,,z
  > END
  $ nxtm import s d store >log
  $ nxtm export store | diff - d
  $ for column in day at hex; do nxtm index store $column >log; done
  $ nxtm query store 'at > """98"" 01/01 12:00:00 am"' --explain | head -3
  -- at > """98"" 01/01 12:00:00 am": ordered index of at, estimated fraction 0.000000 (0 records)
  --   sort keys from 87 CE 81 81 80 80 80 00
  --   below          open
  $ nxtm query store "hex = 0xdeadbeef"
  Mon 15.Mar 2004,"""07"" 12/31 12:00:59 am",0xdeadbeef,0XFF,A
  $ nxtm query store "day = *-02-*"
  Sun 29.Feb 2004,"""70"" 01/01 11:59:59 pm",0x00000000,,z
  $ nxtm check store >log

What would not come out as it is, does not go in.

  $ cp store before
  $ try() { echo "$1" >d; nxtm import s d store; }
  $ try 'Tue 15.Mar 2004,"""07"" 12/31 12:00:59 am",0xdeadbeef,0XFF,A'
  nxtm: d:1:1: column 'day': 'Tue 15.Mar 2004' is no NxDate under '%a %e.%b %Y': it reads as 'Mon 15.Mar 2004'
  [2]
  $ try 'Sun 29.Feb 2005,"""07"" 12/31 12:00:59 am",0xdeadbeef,0XFF,A'
  nxtm: d:1:1: column 'day': 'Sun 29.Feb 2005' is no NxDate under '%a %e.%b %Y': it reads as 'Sun 01.Jan 0000'
  [2]
  $ try 'Mon 15.Mar 2004,"""07"" 12/31 13:00:59 am",0xdeadbeef,0XFF,A'
  nxtm: d:1:17: column 'at': '"07" 12/31 13:00:59 am' is no NxDateTime under '"%y" %m/%d %I:%M:%S %p': it reads as '"07" 12/31 01:00:59 pm'
  [2]
  $ try 'Mon 15.Mar 2004,"""07"" 12/31 12:00:59 am",0xdeadbeef0,0XFF,A'
  nxtm: d:1:44: column 'hex': '0xdeadbeef0' is no unsigned under '0x%08x': it reads as '0xdeadbeef'
  [2]
  $ try 'Mon 15.Mar 2004,"""07"" 12/31 12:00:59 am",0xdeadbeef,0XFG,A'
  nxtm: d:1:55: column 'big': '0XFG' is no NxInt64 under '%X': it reads as '-0X1'
  [2]
  $ try 'Mon 15.Mar 2004,{NULL},0xdeadbeef,0XFF,A'
  nxtm: d:1:17: column 'at': '{NULL}' stands for null
  [2]
  $ cmp store before

Formats that do not fit.

  $ schema() { echo "$1" >s; nxtm import s d fresh; }
  $ schema 'a NxDate format=%H:%M'
  nxtm: s:1:10: '%H' is no directive of NxDate, which has % and one of AaBbdemYy
  [2]
  $ schema 'a NxDateTime format=%Y-%m-%Q'
  nxtm: s:1:14: '%Q' is no directive of NxDateTime, which has % and one of AaBbdemYyHIMSPp
  [2]
  $ schema 'a NxDateTime format=date'
  nxtm: s:1:14: the format 'date' has no directive
  [2]
  $ schema 'a NxDateTime format=%d%'
  nxtm: s:1:14: '%' is no directive of NxDateTime, which has % and one of AaBbdemYyHIMSPp
  [2]
  $ schema 'a long format=%s'
  nxtm: s:1:8: the format '%s' does not fit type long
  [2]
  $ schema 'a double format=%d'
  nxtm: s:1:10: the format '%d' does not fit type double
  [2]
  $ schema 'a NxString format=%s'
  nxtm: s:1:12: 'format=%s' is no option of a column of type NxString
  [2]
  $ schema 'a NxDate format='
  nxtm: s:1:10: 'format=' is no option of a column of type NxDate
  [2]
  $ schema 'a NxDate format="%d'
  nxtm: s:1:10: the quote does not end
  [2]

References in their own form or another.

  $ printf 'a NxRef nullable\nb NxObjId format=%%H.%%L.%%B\nc NxClassId\n' >s
  $ printf '"(3:0-42#7, 12)",1.2.3,(12v2)\n,0.1.0,(0v0)\n' >d
  $ nxtm import s d refs >log
  $ nxtm export refs | cmp - d
  $ nxtm query refs 'b = 1.2.0'
  "(3:0-42#7, 12)",1.2.3,(12v2)
  $ nxtm query refs 'a is null'
  ,0.1.0,(0v0)
  $ try() { echo "$1" >d; nxtm import s d refs; }
  $ try '"(a:b-c#d, e)",1.2.3,(12v2)'
  nxtm: d:1:1: column 'a': '(a:b-c#d, e)' stands for null
  [2]
  $ try '"(3:0-42#7, 70000)",1.2.3,(12v2)'
  nxtm: d:1:1: column 'a': '(3:0-42#7, 70000)' is no NxRef under '(%D:%H-%L#%B, %C)': it reads as '(3:0-42#7, 4464)'
  [2]
  $ try '"(3:0-42#7, 12)",1.2,(12v2)'
  nxtm: d:1:18: column 'b': '1.2' is no NxObjId under '%H.%L.%B': it reads as '1.2.0'
  [2]
  $ try '"(3:0-42#7, 12)",1.2.3,(65535v65535)'
  nxtm: d:1:24: column 'c': '(65535v65535)' stands for null
  [2]

Blobs come from files beside the table, and go to files.

  $ mkdir in
  $ printf '\000\377bytes' >in/some
  $ : >in/none
  $ head -c 16777216 /dev/urandom >in/large
  $ printf 'name NxString\nbytes NxBlob nullable\n' >in/s
  $ printf 'some,@some\nnone,@none\nhex,00fF\nnull,\nempty,""\nlarge,@large\n' >in/d
  $ nxtm import in/s in/d blobs >log
  $ nxtm export blobs --blobs out
  some,@out/bytes.1
  none,@out/bytes.2
  hex,@out/bytes.3
  null,
  empty,@out/bytes.5
  large,@out/bytes.6
  $ cmp out/bytes.1 in/some && cmp out/bytes.2 in/none && cmp out/bytes.6 in/large
  $ nxtm export blobs --blobs out
  nxtm: blobs: record 0: out/bytes.1: File exists
  [3]
  $ nxtm export blobs | head -5
  some,00FF6279746573
  none,""
  hex,00FF
  null,
  empty,""
  $ nxtm index blobs bytes --hash >log
  $ nxtm query blobs 'bytes = "@in/large"' --count
  1
  $ nxtm index blobs bytes
  nxtm: blobs have no ordered index; --hash makes one for exact matches
  [2]
  $ nxtm check blobs
  6 records: sound
  hash index of bytes, 5 entries: sound
  $ try() { printf "$1" >in/d; nxtm import in/s in/d blobs; }
  $ try 'a,@missing\n'
  nxtm: in/d:1:3: column 'bytes': in/missing: No such file or directory
  [2]
  $ try 'a,0\n'
  nxtm: in/d:1:3: column 'bytes': '0' has an odd number of hexadecimal digits
  [2]
  $ try 'a,0g\n'
  nxtm: in/d:1:3: column 'bytes': character 2 of '0g' is not a hexadecimal digit
  [2]
  $ truncate -s 200M in/huge
  $ try 'a,@huge\n'
  nxtm: in/d:1:3: column 'bytes': in/huge has 209715200 bytes; at most 134217728 can be kept
  [2]

Every kind of number comes back, and its image under high byte first is shown.

  $ for value in 'char -5' 'short -300' 'long -70000' 'NxWord 65535' 'NxDWord 4294967295' 'int -1' \
  >   'unsigned 4000000000' 'enum 3' 'NxByte 200' 'BlockId 4294967295' 'NxSeal 281474976710655' \
  >   'NxNull_char 7' 'NxNull_uchar 200' 'NxNull_ushort 65535' 'NxNull_unsigned 4000000000' \
  >   'NxNull_ulong 4294967295' 'NxNull_NxInt64 -9000000000'; do
  >   set -- $value
  >   echo "$(nxtm load $1 "$(nxtm store $1 $2 --format 2)" --format 2)  $(nxtm store $1 $2 --format 2)  $1"
  > done
  -5  FB  char
  -300  FE D4  short
  -70000  FF FE EE 90  long
  65535  FF FF  NxWord
  4294967295  FF FF FF FF  NxDWord
  -1  FF FF FF FF  int
  4000000000  EE 6B 28 00  unsigned
  3  00 00 00 03  enum
  200  C8  NxByte
  4294967295  FF FF FF FF  BlockId
  281474976710655  FF FF FF FF FF FF  NxSeal
  7  00 07  NxNull_char
  200  00 C8  NxNull_uchar
  65535  00 FF FF  NxNull_ushort
  4000000000  00 EE 6B 28 00  NxNull_unsigned
  4294967295  00 FF FF FF FF  NxNull_ulong
  -9000000000  00 E7 8E E6 00 FF FF FF FD  NxNull_NxInt64

What is no value of its type, or no image of one, is named with its reason.

  $ nxtm store NxTime 1
  nxtm: '1' is not a time of day (hour:minute:second)
  [2]
  $ nxtm store NxDateTime x
  nxtm: 'x' is not a point in time (year-month-dayThour:minute:second)
  [2]
  $ nxtm store d_Time 1:2
  nxtm: '1:2' is not a time (hour:minute:second.25+hour:minute)
  [2]
  $ nxtm store d_Timestamp 2004
  nxtm: '2004' is not a point in time (year-month-dayThour:minute:second.25+hour:minute)
  [2]
  $ nxtm store short 70000
  nxtm: '70000' is outside -32768 to 32767
  [2]
  $ nxtm load short AABBCC
  nxtm: not the image of one short value
  [2]
  $ nxtm load NxString 0700
  nxtm: not the image of one NxString value
  [2]
  $ echo 'a NxString codeset=9' >codeset.txt; nxtm import codeset.txt /dev/null codeset.store
  nxtm: codeset.txt:1:12: there is no code set '9' (0, 1, 2, 3, 4 or 253)
  [2]

Formats with bit 3 are those of values in memory, which have no image.

  $ for type in NxString NxIString; do for format in 8 9 15 255; do nxtm key $type abc --format $format; done; done 2>&1 | uniq -c
        8 nxtm: format bytes with bit 3 are forms in memory, not of images
