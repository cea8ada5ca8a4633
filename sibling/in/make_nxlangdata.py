#!/usr/bin/env python3
"""Writes the table source of the language library from Unicode's own files.

usage: make_nxlangdata.py [DIRECTORY [OUTPUT]]

DIRECTORY holds UnicodeData.txt, SpecialCasing.txt and allkeys.txt (Debian:
unicode-data, /usr/share/unicode); OUTPUT is nxlangdata.inc beside this script.
docs/collation.md describes what the tables mean. A change that moves any two
texts against each other needs a higher number in NxCollationVersion().
"""
import bisect
import io
import os
import re
import sys
from collections import namedtuple

# --------------------------------------------------------------------------
# What is ours: symbols, digits, languages

# Symbols of ASCII and Latin-1 by their index in the table of symbol names.
SYMBOLS = {
    '_': 32, '¯': 34, '\u00AD': 35, '-': 36, ',': 37, ';': 38, ':': 39, '!': 40, '¡': 41, '?': 42,
    '/': 44, '.': 46, '·': 49, '¸': 50, "'": 52, '"': 55, '«': 58, '»': 59, '(': 60, ')': 62,
    '[': 64, ']': 65, '{': 66, '}': 67, '§': 68, '¶': 69, '©': 70, '®': 71, '@': 73, '¤': 74,
    '¢': 75, '$': 76, '£': 77, '¥': 78, '*': 79, '\\': 80, '&': 81, '#': 82, '%': 83, '+': 85,
    '±': 87, '´': 88, '`': 89, '^': 91, '¨': 94, '~': 96, '÷': 98, '×': 99, '<': 101, '=': 103,
    '>': 105, '¬': 106, '|': 107, '¦': 108, '°': 109, 'µ': 110, '¿': 139,
}
FIRST_SYMBOL, FIRST_DIGIT = 80, 0x3F00
UNDEFINED_INDICATOR = 13  # an order value below 80 that no character takes

# Accents with a number of their own; 16 to 31 are numbered letter by letter.
ACCENTS = {0x0327: 1, 0x0301: 2, 0x0300: 3, 0x0302: 4, 0x0303: 5, 0x0308: 6, 0x030A: 7, 'stroke': 8,
           0x030C: 9, 0x0304: 10, 0x0306: 11, 0x0307: 12, 0x0328: 13, 0x030B: 14}
CEDILLA, TILDE, DIAERESIS, STROKE, DOUBLE_ACUTE = 1, 5, 6, 8, 14
LIGATURE = 15  # of a letter that is written as part of, or in place of, another
FIRST_FREE_ACCENT, LAST_ACCENT = 16, 31

# Extension 1 of these letters is for the letters that Spanish puts after them.
RESERVED_EXTENSION = {'c', 'l', 'n'}

SPANISH, SWEDISH, DANISH = 4, 5, 6

# Letters that a language moves: the lower-case letter and its new index,
# extension and accent. What is composed of one of them moves with it.
MOVED = {
    SPANISH: {'ñ': ('n', 1, TILDE)},
    SWEDISH: {'å': (29, 0, 0), 'ä': (30, 0, 0), 'æ': (30, 0, LIGATURE), 'ö': (31, 0, 0), 'ø': (31, 0, STROKE),
              'ő': (31, 0, DOUBLE_ACUTE), 'œ': (31, 0, LIGATURE), 'ü': ('y', 0, LIGATURE),
              'ű': ('y', 0, DOUBLE_ACUTE)},
    DANISH: {'æ': (29, 0, 0), 'ä': (29, 0, DIAERESIS), 'ø': (30, 0, 0), 'ö': (30, 0, DIAERESIS),
             'ő': (30, 0, DOUBLE_ACUTE), 'å': (31, 0, 0), 'ü': ('y', 0, LIGATURE),
             'ű': ('y', 0, DOUBLE_ACUTE)},
}
# Pairs of letters that are one letter: index, extension, accent.
CONTRACTIONS = {
    SPANISH: {'ch': ('c', 1, 0), 'll': ('l', 1, 0)},
    DANISH: {'aa': (31, 0, LIGATURE)},
}

CODE_SETS = [('Latin1', 'latin-1'), ('Windows1252', 'cp1252'), ('Latin9', 'iso8859-15'),
             ('Latin2', 'iso8859-2')]

NO_COLLATION, PLAIN_ORDER = 255, 20
FIRST_UNLISTED = 0x250  # from here on only letters that fit the layout have records


# --------------------------------------------------------------------------
# Unicode's files

Char = namedtuple('Char', 'name category compatible decomposition upper lower')


class Unicode:
    def __init__(self, directory):
        self.chars = {}
        with open(os.path.join(directory, 'UnicodeData.txt'), encoding='ascii') as lines:
            for line in lines:
                f = line.rstrip('\n').split(';')
                parts = f[5].split()
                compatible = bool(parts) and parts[0].startswith('<')
                mapping = tuple(int(p, 16) for p in parts[compatible:])
                self.chars[int(f[0], 16)] = Char(f[1], f[2], compatible, mapping,
                                                 int(f[12] or '0', 16), int(f[13] or '0', 16))
        self.elements = {}
        self.version = 'unknown'
        element = re.compile(r'\[[.*]([0-9A-F]+)\.([0-9A-F]+)\.([0-9A-F]+)\]')
        with open(os.path.join(directory, 'allkeys.txt'), encoding='utf-8') as lines:
            for line in lines:
                if line.startswith('@version'):
                    self.version = line.split()[1]
                if re.match(r'[0-9A-F]', line):
                    chars, rest = line.split(';', 1)
                    found = element.findall(rest.split('#')[0])
                    self.elements[tuple(int(c, 16) for c in chars.split())] = [
                        tuple(int(w, 16) for w in e) for e in found]
        self.full_upper = {}
        with open(os.path.join(directory, 'SpecialCasing.txt'), encoding='utf-8') as lines:
            for line in lines:
                f = [p.strip() for p in line.split('#')[0].split(';')]
                if len(f) == 5 and len(f[3].split()) > 1:  # without a condition
                    self.full_upper[int(f[0], 16)] = tuple(int(c, 16) for c in f[3].split())

    def canonical(self, c):
        """The character and the mark that c is composed of, or None."""
        info = self.chars[c]
        return info.decomposition if info.decomposition and not info.compatible else None

    def key(self, c):
        """Weights that order c as the Unicode collation table does."""
        parts = self.canonical(c)
        if parts:
            keys = [self.key(p) for p in parts]
            return tuple(sum((list(k[level]) for k in keys), []) for level in range(3))
        found = self.elements[(c,)]
        return tuple([e[level] for e in found if e[level]] for level in range(3))

    def primaries(self, c):
        return self.key(c)[0]


# --------------------------------------------------------------------------
# Order values

Record = namedtuple('Record', 'order collation variants followers expansion')


def plain_record(values, collation=NO_COLLATION):
    return Record(values[0], collation, None, None, tuple(values[1:]))


def letter_order(index, extension, accent, case):
    return 0x4000 | case << 12 | accent << 7 | index << 2 | extension


def ascii_index(letter):
    return ord(letter) - ord('a') + 3 if isinstance(letter, str) else letter


class Letters:
    """Gives every Latin letter its place: a cell (letter index and extension),
    an accent in it, and its case.

    A letter is an item (cell, marks); letters that differ in case only are one
    item. Marks that have no number of their own are numbered from 16 on, cell
    by cell, in the order of the Unicode collation table."""

    def __init__(self, unicode):
        self.u = unicode
        self.ascii = {self.u.primaries(ord(c))[0]: c for c in 'abcdefghijklmnopqrstuvwxyz'}
        self.ascii_primaries = sorted(self.ascii)
        self.strokes = {self.u.elements[(c,)][0][1] for c in (0x0335, 0x0338)}
        self.listed = self.candidates()
        self.gaps = self.share_extensions()
        self.orders = self.number_items()

    # -- which letters

    def candidates(self):
        """Latin letters that may have a record, before the numbers run out."""
        own = [c for c in range(0x250) if self.u.chars[c].category.startswith('L') and chr(c) not in SYMBOLS]
        chosen = set(own)
        for c in own:  # the other case of a listed letter
            chosen.update(x for x in (self.u.chars[c].upper, self.u.chars[c].lower) if 0 < x < 0x10000)
        for c in sorted(self.u.chars):  # what is composed of listed letters
            parts = self.u.canonical(c)
            latin = 'LATIN' in self.u.chars[c].name or c in (0x212A, 0x212B)  # the signs of K and Å
            if c < 0x10000 and latin and (self.is_ligature(c) or parts and parts[0] in chosen):
                chosen.add(c)
        return sorted(chosen)

    def is_ligature(self, c):
        return 'LATIN SMALL LIGATURE' in self.u.chars[c].name or c == 0x1E9E

    # -- cells

    def gap_of(self, c):
        """For a letter with a place of its own between two ASCII letters: the
        first of the two; else None."""
        found = self.u.primaries(c)
        if len(found) != 1 or found[0] in self.ascii or self.u.canonical(c):
            return None
        at = bisect.bisect(self.ascii_primaries, found[0])
        return self.ascii[self.ascii_primaries[at - 1]]

    def share_extensions(self):
        """Cells of the letters between ASCII letters: primary weight -> (letter,
        extension, position in the cell). Three extensions serve a gap; where
        more letters lie, neighbours share one, the rarer letters first."""
        gaps = {}
        for c in self.listed:
            gap = self.gap_of(c)
            if gap:
                rank = 4 if c < 0x180 else 2 if c < 0x200 else 1
                primary = self.u.primaries(c)[0]
                weights = gaps.setdefault(gap, {})
                weights[primary] = max(weights.get(primary, 0), rank)
        cells = {}
        for gap, weights in gaps.items():
            groups = [[p] for p in sorted(weights)]
            first = 2 if gap in RESERVED_EXTENSION else 1
            while len(groups) > 4 - first:
                costs = [sum(weights[p] for p in groups[i] + groups[i + 1]) for i in range(len(groups) - 1)]
                at = costs.index(min(costs))
                groups[at:at + 2] = [groups[at] + groups[at + 1]]
            for n, group in enumerate(groups):
                for position, primary in enumerate(group):
                    cells[primary] = (gap, first + n, position, len(group))
        return cells

    def item(self, c):
        """Cell, member of the cell (0: the letter that accents with names go
        with) and marks of a letter that has one order value; None for the
        others. A letter of an extension always has an accent, for the text of
        an order value names letters without accent by the ASCII letter."""
        parts = self.u.canonical(c)
        if parts:
            base = self.item(parts[0])
            return base and (base[0], base[1], base[2] + parts[1:])
        if chr(c).lower() in self.ascii.values() and c < 0x80:
            return ((chr(c).lower(), 0), 0, ())
        if self.gap_of(c):
            letter, extension, position, members = self.gaps[self.u.primaries(c)[0]]
            stroke = members == 1 and 'WITH STROKE' in self.u.chars[c].name
            return ((letter, extension), 0 if stroke else position + 1, ('stroke',) if stroke else ())
        elements = self.u.elements[(c,)]
        if len(self.u.primaries(c)) != 1 or self.u.chars[c].decomposition[1:]:
            return None
        mark = 'stroke' if len(elements) == 2 and elements[1][1] in self.strokes else ('as', self.pair(c))
        return ((self.ascii[elements[0][0]], 0), 0, (mark,))

    def pair(self, c):
        return self.u.chars[c].lower or c

    def parts(self, c):
        """The letters that a letter of several order values is written with,
        and the symbol that goes with it, if any."""
        written = self.u.chars[c].decomposition
        if c == 0x1E9E:
            return [ord('S'), ord('S')], None
        if self.u.canonical(c):  # ǽ is æ with an acute on its last part
            base, symbol = self.parts(written[0])
            return base[:-1] + [(base[-1], written[1:])], symbol
        if c == 0x0149:
            return [ord('n')], "'"
        if len(written) == 2 and written[1] == 0xB7:
            return [written[0]], '·'
        if not written:
            upper = self.u.chars[c].category == 'Lu'
            letters = [self.ascii[p] for p in self.u.primaries(c)]
            return [ord(x.upper() if upper else x) for x in letters], None
        return list(written), None

    @staticmethod
    def part_code(part):
        return part[0] if isinstance(part, tuple) else part

    def part_item(self, part):
        code, marks = part if isinstance(part, tuple) else (part, ())
        cell, member, own = self.item(code)
        return (cell, member, ('ligature',) + own + marks)

    def case(self, c):
        return 0 if self.u.chars[c].category in ('Lu', 'Lt') else 1

    # -- numbers

    def number_items(self):
        """Order values of every listed letter for which the numbers suffice."""
        wanted = {}  # item -> best (priority, code) of the letters that need it
        for c in self.listed:
            single = self.item(c)
            for item in [single] if single else [self.part_item(p) for p in self.parts(c)[0]]:
                priority = 0 if c < 0x200 else 1 if 0x1EA0 <= c <= 0x1EF9 else 2
                wanted[item] = min(wanted.get(item, (9, 0, None)), (priority, c, item))
        cells = {}
        for item in wanted:
            cells.setdefault(item[0], []).append(item)
        self.accents = {}
        for items in cells.values():
            unnamed = sorted((i for i in items if self.named_accent(i) is None), key=lambda i: wanted[i][:2])
            kept = unnamed[:LAST_ACCENT - FIRST_FREE_ACCENT + 1]
            kept.sort(key=lambda i: self.u.key(wanted[i][1]) if i[2][:1] != ('ligature',) else
                      ([], self.u.key(wanted[i][1])[1]))
            self.accents.update((i, FIRST_FREE_ACCENT + n) for n, i in enumerate(kept))
        orders = {c: self.order_values(c) for c in self.listed}
        return {c: values for c, values in orders.items() if values}

    def named_accent(self, item):
        cell, member, marks = item
        if member:
            return None
        if not marks:
            return 0
        if marks == ('ligature',):
            return LIGATURE
        return ACCENTS.get(marks[0]) if len(marks) == 1 else None

    def order_of(self, item, case):
        accent = self.named_accent(item)
        if accent is None:
            accent = self.accents.get(item)
        if accent is None:
            return None
        letter, extension = item[0]
        return letter_order(ascii_index(letter), extension, accent, case)

    def order_values(self, c):
        """The list of order values of a letter, or None when none is left."""
        single = self.item(c)
        if single:
            order = self.order_of(single, self.case(c))
            return order and [order]
        parts, symbol = self.parts(c)
        values = [self.order_of(self.part_item(p), self.case(self.part_code(p))) for p in parts]
        if None in values:
            return None
        return values + ([FIRST_SYMBOL + SYMBOLS[symbol]] if symbol else [])


def space_orders(unicode):
    """Order values below 80 for controls and blanks: first what the Unicode
    collation table ignores, then the others in its order."""
    spaces = [c for c in range(1, 0x100) if unicode.chars[c].category in ('Cc', 'Zs')]
    spaces.sort(key=lambda c: (unicode.key(c), c))
    numbers = [n for n in range(1, FIRST_SYMBOL) if n != UNDEFINED_INDICATOR]
    return dict(zip(spaces, numbers))


def digit_values(unicode, c):
    """A digit; superscripts and fractions are digits with expansion: ² is 2
    and a caret, ½ is 1, a solidus and 2."""
    written = unicode.chars[c].decomposition
    if not written:
        return [FIRST_DIGIT + 10 * (c - 0x30)]
    values = [FIRST_SYMBOL + SYMBOLS['/'] if d == 0x2044 else FIRST_DIGIT + 10 * (d - 0x30) for d in written]
    return [values[0] | 1] + (values[1:] or [FIRST_SYMBOL + SYMBOLS['^']])


class Collation:
    """The records of all listed characters with their variants."""

    def __init__(self, unicode):
        self.u = unicode
        self.letters = Letters(unicode)
        values = {0: [0]}
        values.update((c, [order]) for c, order in space_orders(unicode).items())
        values.update((ord(c), [FIRST_SYMBOL + n]) for c, n in SYMBOLS.items())
        values.update((c, digit_values(unicode, c)) for c in range(0x100)
                      if unicode.chars[c].category in ('Nd', 'No'))
        values.update(self.letters.orders)
        variants = self.variants(values)
        self.records = {}
        for c, v in sorted(values.items()):
            own = tuple(sorted(variants.get(c, {}).items()))
            self.records[c] = plain_record(v)._replace(variants=own or None)

    def variants(self, values):
        """Per character, the records that languages give it."""
        found = {}
        for language, moved in MOVED.items():
            for c, (index, extension, accent) in self.moved_places(moved, values).items():
                order = letter_order(index, extension, accent, self.letters.case(c))
                found.setdefault(c, {})[language] = plain_record([order])
        for language, pairs in CONTRACTIONS.items():
            for pair, (index, extension, accent) in pairs.items():
                for c in (pair[0], pair[0].upper()):
                    followers = []
                    for follower in (pair[1], pair[1].upper()):
                        # Case values fall from all small to all capital, so that each spelling keeps its own.
                        case = 3 - 2 * c.isupper() - follower.isupper()
                        order = letter_order(ascii_index(index), extension, accent, case)
                        followers.append((ord(follower), plain_record([order])))
                    base = plain_record(values[ord(c)])
                    found.setdefault(ord(c), {})[language] = base._replace(followers=tuple(followers))
        return found

    def moved_places(self, moved, values):
        """Where a language puts the letters that it moves and what is composed
        of them: character -> (index, extension, accent)."""
        found = {c: self.moved_base(c, moved) for c in values}
        found = {c: base for c, base in found.items() if base}
        taken = {self.place(values[c][0]) for c in values if len(values[c]) == 1 and c not in found}
        places, accents = {}, {}
        for c, (letter, marks) in found.items():  # the letters themselves before what is composed of them
            if not marks:
                index, extension, accent = moved[letter]
                places[c] = (ascii_index(index), extension, accent)
        taken.update(places.values())
        for c, (letter, marks) in found.items():
            if marks and (letter, marks) not in accents:
                cell = (ascii_index(moved[letter][0]), moved[letter][1])
                named = ACCENTS.get(marks[0]) if len(marks) == 1 and moved[letter][2] == 0 else None
                free = [a for a in range(FIRST_FREE_ACCENT, LAST_ACCENT + 1) if cell + (a,) not in taken]
                accents[letter, marks] = cell + (named or free[0],)
                taken.add(accents[letter, marks])
            if marks:
                places[c] = accents[letter, marks]
        return places

    def moved_base(self, c, moved):
        """The moved letter that c is or is composed of, and the further marks."""
        lower = chr(self.u.chars[c].lower or c)
        if lower in moved:
            return lower, ()
        parts = self.u.canonical(c)
        base = self.moved_base(parts[0], moved) if parts else None
        return base and (base[0], base[1] + parts[1:])

    @staticmethod
    def place(order):
        return order >> 2 & 0x1F, order & 3, order >> 7 & 0x1F


# --------------------------------------------------------------------------
# Code sets and case

def to_unicode(codec):
    """The 256 characters; a byte without one is the control of its number."""
    return [ord(bytes([b]).decode(codec, 'replace').replace('\uFFFD', chr(b))) for b in range(256)]


def case_properties(unicode):
    """Character -> (upper, lower, further upper-case characters)."""
    found = {}
    for c, info in unicode.chars.items():
        if c > 0xFFFF or max(info.upper, info.lower) > 0xFFFF:
            continue
        upper, further = info.upper, ()
        if c in unicode.full_upper:
            upper, further = unicode.full_upper[c][0], unicode.full_upper[c][1:]
        if upper or info.lower:
            found[c] = (upper, info.lower, further)
    return found


# --------------------------------------------------------------------------
# The table source

class Writer:
    def __init__(self, output):
        self.out = output

    def rows(self, head, cells, tail='};\n'):
        """Cells separated by commas in lines of at most 110 columns."""
        self.out.write(head + '\n')
        line = '   '
        for cell in cells:
            if len(line) + len(cell) + 2 > 110:
                self.out.write(line + '\n')
                line = '   '
            line += ' ' + cell + ','
        self.out.write(line + '\n' + tail + '\n')


class Pool:
    """Distinct values in the order of their first use."""

    def __init__(self):
        self.at = {}

    def add(self, value):
        return self.at.setdefault(value, len(self.at))

    def __iter__(self):
        return iter(self.at)


class ListPool:
    """Lists of 16-bit values, one after another in one array."""

    def __init__(self, array):
        self.array, self.pool = array, Pool()

    def reference(self, values):
        return '&%s[%d]' % (self.array, self.pool.add(values)) if values else '0'

    def write(self, w):
        values = [v for entry in self.pool for v in entry]
        name = self.array.rstrip('s') + 'Values'
        w.rows('constexpr unsigned short %s[] = {' % name, ['0x%04X' % v for v in values])
        cells, at = [], 0
        for entry in self.pool:
            cells.append('{%s + %d, %d}' % (name, at, len(entry)))
            at += len(entry)
        w.rows('constexpr NxWCharList %s[] = {' % self.array, cells)


class RecordWriter:
    """Writes records leaves first: a record only refers to what stands above."""

    def __init__(self, w):
        self.w = w
        self.expansions = ListPool('kExpansions')

    def cell(self, record, variants='0', followers='0'):
        collation = 'kNone' if record.collation == NO_COLLATION else str(record.collation)
        return '{0x%04X, %s, %s, %s, %s}' % (record.order, collation, variants, followers,
                                             self.expansions.reference(record.expansion))

    def write(self, records, symbols):
        """Answers how many records there are beside those of `records`."""
        contracted, heads, followers, variants = Pool(), Pool(), Pool(), Pool()
        for record in records:
            for _, variant in record.variants or ():
                heads.add(variant)
                if variant.followers:
                    followers.add(variant.followers)
                    for _, whole in variant.followers:
                        contracted.add(whole)
            if record.variants:
                variants.add(record.variants)
        body = [self.cell(r, '&kVariants[%d]' % variants.at[r.variants] if r.variants else '0')
                for r in records]
        self.expansions.write(self.w)
        self.w.rows('// What contractions stand for.\nconstexpr NxCharInfo kContracted[] = {',
                    [self.cell(r) for r in contracted])
        self.entries('Followers', followers, 'kContracted', contracted)
        self.w.rows('// What characters are in single languages.\nconstexpr NxCharInfo kVariantRecords[] = {',
                    [self.cell(r, '0', '&kFollowers[%d]' % followers.at[r.followers] if r.followers else '0')
                     for r in heads])
        self.entries('Variants', variants, 'kVariantRecords', heads)
        self.w.rows('// Characters 0 to 0x24F by their number, then those that kRecordIndex names.\n'
                    'constexpr NxCharInfo kRecords[] = {', body)
        self.w.rows('// Characters of 8-bit code sets that have no record in Unicode: each orders as\n'
                    '// itself, as it does there.\nconstexpr NxCharInfo kSymbolRecords[] = {',
                    [self.cell(r) for r in symbols])
        return sum(1 for pool in (contracted, heads, symbols) for _ in pool)

    def entries(self, kind, pool, array, targets):
        cells = ['{0x%02X, &%s[%d]}' % (key, array, targets.at[r]) for entry in pool for key, r in entry]
        self.w.rows('constexpr NxChar%s::Entry k%sEntries[] = {' % (kind, kind), cells)
        cells, at = [], 0
        for entry in pool:
            cells.append('{k%sEntries + %d, %d}' % (kind, at, len(entry)))
            at += len(entry)
        self.w.rows('constexpr NxChar%s k%s[] = {' % (kind, kind), cells)


def write_pages(w, name, numbers):
    """Two-level table: 256 page numbers, then the pages used; 0 for none."""
    pages, numbered = Pool(), []
    pages.add((0,) * 256)
    for high in range(256):
        numbered.append(pages.add(tuple(numbers.get(high << 8 | low, 0) for low in range(256))))
    w.rows('constexpr unsigned char k%sPage[256] = {' % name, [str(n) for n in numbered])
    w.rows('constexpr unsigned short k%sIndex[][256] = {' % name,
           [cell for page in pages for cell in ['{' + str(page[0])] + [str(n) for n in page[1:255]] +
            [str(page[255]) + '}']])
    return len(list(pages))


def write_code_set(w, name, codec):
    chars = to_unicode(codec)
    w.rows('constexpr unsigned short k%sToUnicode[256] = {' % name, ['0x%04X' % c for c in chars])
    apart = sorted((c, b) for b, c in enumerate(chars) if b != c)
    if apart:
        w.rows('// Where character and byte differ: ascending by character.\n'
               'constexpr CharPair k%sApart[] = {' % name, ['{0x%04X, 0x%02X}' % p for p in apart])


HEADER = '''\
// Written by make_nxlangdata.py from the files of Unicode {version}; not to be edited.
//
// Form: a record of 16 bytes a character ({records} of them; 0 to 0x24F lie at their number), {further}
// more for languages and symbols, and {cased} case mappings of 8 bytes. Both are found through 256 page
// numbers and pages of 256 numbers, {pages} pages in all. About {size} KB, all of it constant.
// Smaller forms: records packed into 4 bytes save {packed} KB and cost every reader a second look-up for
// variants and lists; case mappings as ranges with a distance save about {ranges} KB and cost a search each.
'''


def write_tables(unicode, w):
    """Writes every table; answers the counts that the header names."""
    records = Collation(unicode).records
    # Below FIRST_UNLISTED the letters that found no number leave holes, which kRecordIndex passes over.
    low = [records.get(c, plain_record([0])) for c in range(FIRST_UNLISTED)]
    high = [c for c in records if c >= FIRST_UNLISTED]
    numbers = {c: c + 1 for c in records if c < FIRST_UNLISTED}
    numbers.update((c, FIRST_UNLISTED + n + 1) for n, c in enumerate(high))
    symbols = sorted({c for _, codec in CODE_SETS for c in to_unicode(codec) if c not in records})
    further = RecordWriter(w).write(low + [records[c] for c in high],
                                    [plain_record([c], PLAIN_ORDER) for c in symbols])
    w.rows('constexpr unsigned short kSymbols[] = {', ['0x%04X' % c for c in symbols])
    w.out.write('// Number of the record of a character plus 1.\n')
    pages = write_pages(w, 'Record', numbers)
    for name, codec in CODE_SETS:
        write_code_set(w, name, codec)
    cased = case_properties(unicode)
    lists = ListPool('kFurtherUpper')
    cells = ['{0x%04X, 0x%04X, %s}' % (u, l, lists.reference(f)) for _, (u, l, f) in sorted(cased.items())]
    lists.write(w)
    w.rows('// Entry 0 is for characters without case.\nconstexpr NxUnicodeProps kCases[] = {',
           ['{0, 0, 0}'] + cells)
    pages += write_pages(w, 'Case', {c: n + 1 for n, c in enumerate(sorted(cased))})
    return {'records': len(low) + len(high), 'further': further, 'cased': len(cased), 'pages': pages}


def main(arguments):
    directory = arguments[1] if len(arguments) > 1 else '/usr/share/unicode'
    output = arguments[2] if len(arguments) > 2 else os.path.join(os.path.dirname(os.path.abspath(__file__)),
                                                                  'nxlangdata.inc')
    unicode = Unicode(directory)
    tables = io.StringIO()
    counts = write_tables(unicode, Writer(tables))
    pages = 512 * counts['pages']
    size = 16 * (counts['records'] + counts['further']) + 8 * counts['cased'] + pages
    with open(output, 'w', encoding='utf-8', newline='\n') as out:
        out.write(HEADER.format(version=unicode.version, size=size // 1024,
                                packed=12 * counts['records'] // 1024,
                                ranges=(8 * counts['cased'] + pages) * 4 // 5 // 1024, **counts))
        out.write('\n' + tables.getvalue())


if __name__ == '__main__':
    main(sys.argv)
