What can be read of a damaged store goes out, the rest is counted.

  $ printf 'word NxString\nn long nullable\n' >s
  $ for i in $(seq 2000); do echo "word$i,$i"; done >d
  $ nxtm import s d store >log
  $ nxtm index store word >log
  $ nxtm delete store 'n > 1990' >log
  $ printf '"%s",\n' "$(head -c 9000 /dev/zero | tr '\0' x)" >long
  $ nxtm import s long store >log
  $ nxtm salvage store --header | (head -2; tail -1) | cut -c1-20
  nxtm: 1991 of 1991 records were found
  word,n
  word1,1
  xxxxxxxxxxxxxxxxxxxx
  $ nxtm salvage store 2>log | cmp - <(nxtm export store)

A page of zeros, and meta pages of zeros.

  $ cp store damaged
  $ at=$(LC_ALL=C grep -obUa word1000 store | tail -1 | cut -d: -f1)
  $ dd if=/dev/zero of=damaged bs=4096 seek=$((at / 4096)) count=1 conv=notrunc 2>log
  $ nxtm export damaged >log
  nxtm: damaged: * (glob)
  [3]
  $ nxtm salvage damaged >found
  nxtm: damaged: * of 1991 records were found (glob)
  [3]
  $ [ $(wc -l <found) -gt 1700 ] && [ $(wc -l <found) -lt 1991 ] && diff found <(nxtm export store) | grep -c '^<'
  0
  [1]
  $ dd if=/dev/zero of=store bs=4096 count=2 conv=notrunc 2>log
  $ nxtm check store
  nxtm: store: not a store
  [2]
  $ nxtm salvage store | wc -l
  nxtm: 1991 of 1991 records were found
  1991
  $ nxtm salvage s
  nxtm: s: nothing can be read: no root of the store is left
  [3]
