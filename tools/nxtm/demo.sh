#!/usr/bin/env bash
# Shows the workbench at its job on real tables: demo.sh NXTM. Fails when what comes out
# of a store is not what went in, or when an index finds other records than a full scan.
# With --cluster CLUSTER the stores are in a cluster of three nodes that CLUSTER (the script)
# starts, and one of them is killed on the way.
set -euo pipefail

nxtm=$(realpath "$1")
cluster=
[[ ${2-} == --cluster ]] && cluster=$(realpath "$3")
words=/usr/share/dict/ngerman
cities=/usr/share/misc/cities.dat.gz
dir=$(mktemp -d)
trap '[[ -z $cluster ]] || "$cluster" stop "$dir/nodes"; rm -rf "$dir"' EXIT
cd "$dir"
at=  # what stands in front of a store's name
[[ -z $cluster ]] || at=$("$cluster" start "$dir/nodes")

title() { printf '\n== %s\n' "$1"; }
run() {
  local word
  printf '$ nxtm'
  for word in "$@"; do
    [[ $word =~ [^[:alnum:]_./=-] ]] && word="'$word'"
    printf ' %s' "$word"
  done
  printf '\n'
  "$nxtm" "$@"
}

title "Types, stored images, order values, keys"
run types | head -8
run store NxString Zebra Müller
run store --format 2 long 1 -2
run load NxDate 'D4 07 03 0F'
run compare NxString --ignore-accents --ignore-case müller MULLER
run order Straße
run key NxString Straße
run bounds int '<' 30 1 100

title "356,010 German words: in, out, and the same"
echo 'word NxString language=german' >words.schema
run import words.schema "$words" "$at"words.store
"$nxtm" export "$at"words.store | cmp - "$words"
echo "export: equal to the import, byte for byte"

title "Cities of the world: in, out, and the same"
cat >cities.schema <<'SCHEMA'
name        NxString nullable language=english
country     NxString nullable language=english
region      NxString nullable language=english
population  long     nullable
longitude   double   nullable
latitude    double   nullable
elevation   long     nullable
entered     NxDate
SCHEMA
cat cities.schema
zcat "$cities" | awk '
  function field(v) { if (v ~ /[",]/) { gsub(/"/, "\"\"", v); v = "\"" v "\"" } return v }
  function number(v) { gsub(/ /, "", v); return v == "" ? "" : v + 0 }
  BEGIN { print "name,country,region,population,longitude,latitude,elevation,entered" }
  {
    key = $0; sub(/ *:.*/, "", key); sub(/^ */, "", key)
    value = $0; sub(/^[^:]*: */, "", value); sub(/ *$/, "", value)
    v[key] = value
  }
  function finish(  d) {
    if (v["Name"] == "") return
    d = v["Date"]
    print field(v["Name"]) "," field(v["Country"]) "," field(v["Region"]) "," number(v["Population"]) "," \
      number(v["Longitude"]) "," number(v["Latitude"]) "," number(v["Elevation"]) "," \
      substr(d, 1, 4) "-" substr(d, 5, 2) "-" substr(d, 7, 2)
    delete v
  }
  /^\/\// { finish() }
  END { finish() }' >cities.csv
run import --header cities.schema cities.csv "$at"cities.store
"$nxtm" export --header "$at"cities.store | cmp - cities.csv
echo "export: equal to the import, byte for byte"

title "When clocks change: the points in time of every zone of the package tzdata"
cat >clocks.schema <<'SCHEMA'
zone    NxString
when    NxDateTime format="%a %b %e %H:%M:%S %Y"
local   NxDateTime format="%d.%m.%Y %H:%M:%S"
name    NxString
summer  NxBoolean
offset  NxNull_long
SCHEMA
cat clocks.schema
(cd /usr/share/zoneinfo && find Africa America Asia Atlantic Australia Europe Indian Pacific -type f) | sort |
  while read -r zone; do zdump -V -c 1900,2040 "$zone"; done | awk '
  BEGIN { split("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec", names); for (i in names) month[names[i]] = i }
  {
    when = sprintf("%s %s %02d %s %s", $2, $3, $4, $5, $6)
    here = sprintf("%02d.%02d.%s %s", $11, month[$10], $13, $12)
    print $1 "," when "," here "," $14 "," ($15 == "isdst=1" ? "true" : "false") "," substr($16, 8)
  }' >clocks.csv
head -3 clocks.csv
run import clocks.schema clocks.csv "$at"clocks.store
"$nxtm" export "$at"clocks.store | cmp - clocks.csv
echo "export: equal to the import, byte for byte"

title "Files of the package miscfiles as blobs: in, out, and the same"
cat >files.schema <<'SCHEMA'
name     NxString
size     long
changed  d_Timestamp
content  NxBlob
SCHEMA
cat files.schema
dpkg -L miscfiles | grep '^/usr/share/misc/' | sort | while read -r file; do
  [[ -f $file ]] && TZ=UTC stat -c "%n,%s,%y,@%n" "$file" | sed -E 's/ ([0-9:]+)\.([0-9]*) \+0000/T\1/'
done >files.csv
head -3 files.csv
run import files.schema files.csv "$at"files.store
"$nxtm" export "$at"files.store --blobs out >exported.csv
cut -d, -f1-3 exported.csv | cmp - <(cut -d, -f1-3 files.csv)
paste -d, <(cut -d, -f1 files.csv) <(cut -d, -f4 exported.csv) |
  while IFS=,@ read -r file _ copy; do cmp "$file" "$copy"; done
echo "$(wc -l <files.csv) files, $(cat out/* | wc -c) bytes: equal to the originals, byte for byte"

if [[ $cluster ]]; then
  title "One node of three is killed"
  kill -KILL "$(cat "$dir/nodes/node1.pid")"
fi

title "Indexes"
run index "$at"words.store word
run index "$at"words.store word --hash
run index "$at"cities.store name
run index "$at"cities.store population
run index "$at"cities.store entered
run index "$at"clocks.store when
run index "$at"files.store content --hash

title "Queries"
run query "$at"words.store 'word = "Haus*ung"' --explain
run query "$at"words.store 'word = "*schifffahrt*" ignoring case' --limit 5
run query "$at"words.store 'word = "strasse" ignoring case, accents' --explain
run query "$at"words.store 'word = "Dampfschiff"' --explain
run query "$at"words.store 'word >= "zy" and word < "zz"' --explain --limit 5
run query "$at"cities.store 'name = "G?rlitz" or name = "monchengladbach" ignoring case, accents' --explain
run query "$at"cities.store 'population > 7000000 and country != "CN"' --explain
run query "$at"cities.store 'entered = 1997-*-* and population < 100000 and region is not null' --explain --limit 5
run query "$at"clocks.store 'when >= "Sun Mar 29 00:00:00 2026" and when < "Mon Mar 30 00:00:00 2026" and zone = "Europe/*"' \
  --explain --limit 5
run query "$at"clocks.store 'when < "Mon Jan 01 00:00:00 1900"' --explain
run query "$at"files.store 'content = "@/usr/share/misc/airport.gz"' --explain --limit 0 | grep '^--'

title "An index finds what a full scan finds"
for condition in 'word = "Haus*"' 'word = "?a?a*"' 'word = "uber*" ignoring accents' 'word <= "aal" or word > "zwo"' \
    'word = "e-mail*" ignoring case, symbols' 'word = "Haus"'; do
  found=$("$nxtm" query "$at"words.store "$condition" | md5sum)
  scanned=$("$nxtm" query "$at"words.store "$condition" --scan | md5sum)
  [[ $found == "$scanned" ]] || { echo "$condition: index and scan differ" >&2; exit 1; }
  printf '%s: %s words\n' "$condition" "$("$nxtm" query "$at"words.store "$condition" --count)"
done

title "Stores are sound"
run check "$at"words.store
run check "$at"cities.store
run check "$at"clocks.store
run check "$at"files.store
