Several commands on one store at once: nothing is lost, and readers see whole states.

  $ printf 'word NxString\nn long nullable\n' >s
  $ for i in $(seq 300); do echo "word$i,$i"; done >d
  $ quiet() { "$@" >>log 2>>log || echo "failed: $*"; }
  $ for round in $(seq 20); do
  >   rm -f store store-lock
  >   quiet nxtm import s d store & quiet nxtm import s d store & quiet nxtm import s d store & wait
  >   [ "$(nxtm export store 2>>log | wc -l)" = 900 ] || echo lost
  > done
  $ nxtm check store
  900 records: sound
  $ for round in $(seq 20); do
  >   quiet nxtm import s d store & quiet nxtm index store n & quiet nxtm index store word &
  >   quiet nxtm reindex store & quiet nxtm compact store & wait
  > done
  $ nxtm check store
  6900 records: sound
  ordered index of word, 6900 entries: sound
  ordered index of n, 6900 entries: sound

Readers while others write: each sees a number of whole imports.

  $ (for round in $(seq 20); do quiet nxtm import s d store; quiet nxtm reindex store; quiet nxtm compact store; done) &
  $ for round in $(seq 40); do
  >   (( $(nxtm export store 2>>log | wc -l) % 300 == 0 )) || echo "not whole"
  >   quiet nxtm query store 'n > 17'
  >   quiet nxtm check store
  > done; wait
  $ nxtm check store | head -1
  12900 records: sound

A store that is being written to keeps others waiting, or not.

  $ mkfifo pipe
  $ (nxtm import s pipe store >>log) &
  $ sleep 0.3
  $ nxtm import s d store --no-wait
  nxtm: store: another process is using it
  [2]
  $ nxtm import s d store >>log 2>waiting &
  $ sleep 0.3
  $ timeout 9 cp d pipe; wait
  $ cat waiting
  nxtm: store: waiting for another process that is using it
  $ nxtm check store | head -1
  13500 records: sound

What others have beside a store is theirs; what is unfinished goes with its process.

  $ rm -f store store-lock
  $ echo mine >store.new
  $ nxtm import s pipe store >>log & sleep 0.3; ls | grep -c 'store\.'
  2
  $ kill -TERM $!; wait $!
  [143]
  $ ls | grep store
  store-lock
  store.new
  $ (yes a,1 | head -c 999999; sleep 2) | nxtm import s - store --skip-bad bad >>log & sleep 0.4; ls bad
  bad
  $ kill -INT $!; wait $!
  [130]
  $ ls bad store
  ls: cannot access 'bad': No such file or directory
  ls: cannot access 'store': No such file or directory
  [2]
  $ nxtm import s missing store
  nxtm: missing: No such file or directory
  [2]
  $ nxtm import s d store >>log; cat store.new
  mine
  $ cp store large; truncate -s 3G large
  $ for command in check info; do nxtm $command large; done
  nxtm: large: has 3221225472 bytes, more than this process can map (about 2 GiB)
  nxtm: large: has 3221225472 bytes, more than this process can map (about 2 GiB)
  [3]
  $ rm large
  $ ln -s nowhere link
  $ nxtm import s d link
  nxtm: link: a link that cannot be followed: No such file or directory
  [2]

An index goes, and its room with it.

  $ nxtm index store word >>log; nxtm index store word --hash >>log
  $ nxtm drop store word; nxtm drop store word --hash
  ordered index of word dropped
  hash index of word dropped
  $ nxtm drop store word
  nxtm: store: there is no ordered index of word
  [2]
  $ nxtm check store
  300 records: sound
  $ nxtm compact store
  0.0* MB, 0.* MB before (glob)
  $ nxtm check store
  300 records: sound

Reasons, when the world is not as it should be.

  $ nxtm import s d store >/dev/full
  nxtm: the output cannot be written; the store is
  $ nxtm export store >/dev/full
  nxtm: the output cannot be written: No space left on device
  [3]
  $ nxtm export store | wc -l
  600
  $ NX21_CONFIG=nowhere nxtm export store | wc -l
  nxtm: warning: NX21_CONFIG names nowhere: No such file or directory
  600
