#!/usr/bin/env python3
"""Writes the same made-up texts as a language source and as the peers' files.

DIR/app.lang-src holds all languages; with --peers, DIR/po/LANGUAGE.po and DIR/ts/LANGUAGE.ts hold
one language each. The same arguments give the same bytes.

usage: make_source.py --items N [--languages N] [--peers] --out DIR
"""
import argparse
import pathlib
import random
from xml.sax.saxutils import escape as xml

ALPHABETS = {
    'english': 'open file close window print page error select image layer colour size the of and',
    'german': 'öffnen datei schließen fenster drucken seite fehler wählen bild ebene größe und',
    'french': 'ouvrir fichier fermer fenêtre imprimer page erreur image modèle déjà créer être',
    'russian': 'открыть файл закрыть окно печать страница ошибка выбор слой цвет размер',
    'japanese': '開く ファイル 閉じる ウィンドウ 印刷 ページ エラー 選択 画像 色',
    'arabic': 'فتح ملف إغلاق نافذة طباعة صفحة خطأ اختيار صورة طبقة لون',
    'spanish': 'abrir archivo cerrar ventana imprimir página error selección imagen tamaño',
    'greek': 'άνοιγμα αρχείο κλείσιμο παράθυρο εκτύπωση σελίδα σφάλμα εικόνα χρώμα',
    'polish': 'otwórz plik zamknij okno drukuj strona błąd wybierz obraz warstwa kolor',
    'hindi': 'खोलें फ़ाइल बंद विंडो मुद्रण पृष्ठ त्रुटि चयन चित्र रंग',
}
STAMP = 1700000000
PER_GROUP = 100
ESCAPES = str.maketrans({'\\': '\\\\', '"': '\\"', '\n': '\\n', '\t': '\\t', '\r': '\\r'})


def make_text(rnd, words):
    """Some thirty bytes, one in eight with a second line, a few with what must be escaped."""
    text = ' '.join(rnd.choices(words, k=rnd.randint(1, 6)))
    luck = rnd.random()
    if luck < 0.125:
        text += '\n' + ' '.join(rnd.choices(words, k=rnd.randint(2, 8)))
    elif luck < 0.15:
        text += ' "%s"'
    elif luck < 0.16:
        text += '\t\\n'
    return text


def make_groups(items, languages):
    """Yields each group's name and items; an item is its name and one text per language."""
    rnd = random.Random(items)
    pool = {name: [make_text(rnd, ALPHABETS[name].split()) for _ in range(4000)]
            for name in languages}
    for start in range(0, items, PER_GROUP):
        yield f'group {start // PER_GROUP}', [
            (f'item {number} {rnd.choice(pool["english"])}',
             [rnd.choice(pool[name]) for name in languages])
            for number in range(start, min(start + PER_GROUP, items))]


def write_source(path, groups, languages):
    with path.open('w') as out:
        out.write('/* !!!! DO NOT EDIT !!!!! */\n\nversion 1\nwhatsnew 0\n'
                  f'ctime {STAMP}\nmtime {STAMP}\ndefine format utf8\napp "bench"\n'
                  'default lang "english"\n\n\n')
        for number, name in enumerate(languages):
            out.write(f'define file "{name}.lang" lang "{name}" 200 200 {int(number < 2)}\n')
        out.write('\n\ncolwidth group 200\ncolwidth item  200\ncolwidth ctrl  300\n\n\n')
        for group, items in groups:
            out.write(f'\n\nGROUP "{group}" {{\n  VISIBLE      1\n  SCREEN_SHOT  ""\n')
            for name, texts in items:
                out.write(f'\n  ITEM   "{name.translate(ESCAPES)}"  {{ /* group  =  "{group}" */\n'
                          '    DESCRIPTION  "none"\n    TYP       1\n    ROWHEIGHT 20\n'
                          f'    CTIME     {STAMP}\n    VISIBLE   1\n    READY     1\n'
                          '    USED YES {\n        "00100:src/main.c"\n    }\n')
                for language, text in zip(languages, texts):
                    lines = ''.join(f'        "{line.translate(ESCAPES)}"\n'
                                    for line in text.splitlines(True))
                    out.write(f'    LANG   "{language}" {{\n{lines}    }}\n')
                out.write('  }\n')
            out.write(f'}}  /* end GROUP "{group}" */\n')
        out.write(f'\n\n/* EOF {path.name} */\n')


def write_po(path, groups, column):
    with path.open('w') as out:
        out.write('msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n')
        for group, items in groups:
            for name, texts in items:
                text = texts[column].translate(ESCAPES)
                out.write(f'\n#: src/main.c:100\nmsgctxt "{group}"\n'
                          f'msgid "{name.translate(ESCAPES)}"\nmsgstr "{text}"\n')


def write_ts(path, groups, language, column):
    with path.open('w') as out:
        out.write('<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>\n'
                  f'<TS version="2.1" language="{language[:2]}">\n')
        for group, items in groups:
            out.write(f'<context>\n    <name>{group}</name>\n')
            for name, texts in items:
                out.write('    <message>\n        <location filename="src/main.c" line="100"/>\n'
                          f'        <source>{xml(name)}</source>\n'
                          f'        <translation>{xml(texts[column])}</translation>\n'
                          '    </message>\n')
            out.write('</context>\n')
        out.write('</TS>\n')


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--items', type=int, required=True)
    parser.add_argument('--languages', type=int, default=len(ALPHABETS))
    parser.add_argument('--peers', action='store_true')
    parser.add_argument('--out', type=pathlib.Path, required=True)
    args = parser.parse_args()
    languages = list(ALPHABETS)[:args.languages]
    groups = make_groups(args.items, languages)
    if args.peers:
        groups = list(groups)
    args.out.mkdir(parents=True, exist_ok=True)
    write_source(args.out / 'app.lang-src', groups, languages)
    if args.peers:
        for folder in ('po', 'ts'):
            (args.out / folder).mkdir(exist_ok=True)
        for column, language in enumerate(languages):
            write_po(args.out / f'po/{language}.po', groups, column)
            write_ts(args.out / f'ts/{language}.ts', groups, language, column)


if __name__ == '__main__':
    main()
