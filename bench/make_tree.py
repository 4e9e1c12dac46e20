#!/usr/bin/env python3
"""Makes trees of C sources that ask for the same texts in the words of three tools.

usage: make_tree.py --requests N --out DIR [--filler BYTES] [--per-file N] [--seed S]

DIR/app.lang-src  a source of N items, each of which is asked for once
DIR/lang/         C files with requests in every form
DIR/xgettext      the same files: xgettext reads them with XGETTEXT_KEYWORDS (printed with --keywords)
DIR/qt/           the same code with QCoreApplication::translate("group", "item"), for lupdate

About BYTES of ordinary code stand around a request (1450).
"""
import argparse
import os
import random
import sys

# word, text before the group, what xgettext is told about the arguments
FORMS = (
    ('lang_get_string', '', '1c,2'),
    ('lang_tooltip', '', '1c,2'),
    ('lang_get_str', 'handle, ', '2c,3'),
    ('lang_get', '"A label of the page", ', '2c,3'),
    ('lang_get_fmt', '"A message of the page", ', '2c,3'),
    ('lang_dummy', '"A text of the page", ', '2c,3'),
    ('lang_text', '', '1c,2'),
    ('lang_sym', 'PAGE_NO, "A title of the page", ', '3c,4'),
)
XGETTEXT_KEYWORDS = ['--keyword'] + ['--keyword=%s:%s' % (word, spec) for word, _, spec in FORMS]
WORDS = ('page print job queue device colour layer image margin tray paper size width height count '
         'index name path buffer state event value list node entry table key mask flag').split()
CODE = (
    '    for (i = 0; i < {a}->count; i++)\n        sum += {b}[i] * {c}[i + 1];\n',
    '    if ({a} == NULL || {b}->next != NULL) {{\n        {c}--;\n        return -1;\n    }}\n',
    "    switch (*p) {{\n    case '\"': quote = !quote; break;\n    case '\\\\': p++; break;\n    default: break;\n    }}\n",
    '    fprintf(stderr, "%s: can\'t open \\"%s\\" (%d)\\n", {a}, {b}, errno);\n',
    '    {a}_{b} = (value >> 3) ^ 0x1f; /* the {c} is read once and kept until it has been printed */\n',
    '    memcpy({a}, {b}, sizeof(*{c})); // never rounded\n',
    '    {a}->{b} = a / b * 17.5e3 - .25;\n',
    '    /*\n     * The {a} of the {b} stays where it is while other jobs wait for a free {c}; it is not an\n'
    '     * error when nothing was found, because the caller may ask again with a wider range.\n     */\n',
)
LANG_HEAD = '#include <stdio.h>\n#include "lang.h"\n'
QT_HEAD = '#include <QCoreApplication>\n#include <stdio.h>\n'


def function(rnd, number, group, item, filler):
    """The code around one request, the request left open as @."""
    parts = ['\nstatic int\n%s_%d(struct %s *p, int n)\n{\n    int i, sum = 0;\n\n'
             % (rnd.choice(WORDS), number, rnd.choice(WORDS))]
    size = 0
    while size < filler:
        text = rnd.choice(CODE).format(a=rnd.choice(WORDS), b=rnd.choice(WORDS), c=rnd.choice(WORDS))
        parts.append(text)
        size += len(text)
    parts.insert(rnd.randrange(1, len(parts) + 1), '    puts(@);\n')
    parts.append('    return sum;\n}\n')
    return ''.join(parts)


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, 'w', encoding='utf-8', newline='\n') as f:
        f.write(text)


def write_source(path, groups):
    lines = ['/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\nwhatsnew 0\nctime 1700000000\nmtime 1700000000\n'
             'define format utf8\napp "bench"\ndefault lang "english"\n\n\n'
             'define file "english.lang" lang "english" 200 200 1\n\n\n'
             'colwidth group 200\ncolwidth item  200\ncolwidth ctrl  300\n\n\n']
    for group, items in groups.items():
        lines.append('\n\nGROUP "%s" {\n  VISIBLE      1\n  SCREEN_SHOT  ""\n' % group)
        for item in items:
            lines.append('\n  ITEM   "%s"  { /* group  =  "%s" */\n    DESCRIPTION  "none"\n    TYP       0\n'
                         '    ROWHEIGHT 20\n    CTIME     1700000000\n    VISIBLE   1\n    READY     0\n    USED NO\n'
                         '    LANG   "english" {\n        "%s"\n    }\n  }\n' % (item, group, item))
        lines.append('}  /* end GROUP "%s" */\n' % group)
    lines.append('\n\n/* EOF app.lang-src */\n')
    write(path, ''.join(lines))


def main():
    p = argparse.ArgumentParser(usage=__doc__.split('usage: ')[1].split('\n')[0])
    p.add_argument('--requests', type=int)
    p.add_argument('--out')
    p.add_argument('--filler', type=int, default=1450)
    p.add_argument('--per-file', type=int, default=20)
    p.add_argument('--group-size', type=int, default=400)
    p.add_argument('--seed', type=int, default=1)
    p.add_argument('--keywords', action='store_true', help='print the arguments for xgettext')
    a = p.parse_args()
    if a.keywords:
        print(' '.join(XGETTEXT_KEYWORDS))
        return
    if a.requests is None or a.out is None:
        p.error('--requests and --out are needed')
    if os.path.exists(a.out):
        sys.exit('make_tree.py: %s is there already' % a.out)

    rnd = random.Random(a.seed)
    groups, keys = {}, []
    for n in range(a.requests):
        group = 'group-%d' % (n // a.group_size)
        item = '%s %s %s %d' % (rnd.choice(WORDS), rnd.choice(WORDS), rnd.choice(WORDS), n)
        groups.setdefault(group, []).append(item)
        keys.append((group, item))
    write_source(os.path.join(a.out, 'app.lang-src'), groups)

    rnd.shuffle(keys)
    for first in range(0, len(keys), a.per_file):
        lang, qt = [LANG_HEAD], [QT_HEAD]
        for number, (group, item) in enumerate(keys[first:first + a.per_file], first):
            code = function(rnd, number, group, item, a.filler)
            word, before, _ = FORMS[number % len(FORMS)]
            lang.append(code.replace('@', '%s(%s"%s", "%s")' % (word, before, group, item)))
            qt.append(code.replace('@', 'QCoreApplication::translate("%s", "%s")' % (group, item)))
        name = 'part-%02d/file-%05d' % (first // a.per_file % 40, first // a.per_file)
        write(os.path.join(a.out, 'lang', name + '.c'), ''.join(lang))
        write(os.path.join(a.out, 'qt', name + '.cpp'), ''.join(qt))
    os.symlink('lang', os.path.join(a.out, 'xgettext'))


if __name__ == '__main__':
    main()
