'use strict';
// The report's page. Everything that comes from a source is set as text, never as markup.
(() => {
const data = JSON.parse(document.getElementById('data').textContent);
const $ = id => document.getElementById(id);
const number = n => n.toLocaleString('en');
const counted = (n, word) => number(n) + ' ' + word + (n === 1 ? '' : 's');
const USED = 1, READY = 2;
const LEVELS = ['error', 'warning', 'info'];

// Element with classes, text and children.
function make(tag, classes, text, ...children) {
  const element = document.createElement(tag);
  if (classes) element.className = classes;
  if (text != null) element.textContent = text;
  element.append(...children);
  return element;
}

// ---- The file that is shown

// An item comes as [name, flags, description, texts, findings, comments, places, picture]; a text is
// null when there is none, a finding is [language or -1, rule, message], a comment [language, text]
// or, with a question that nobody has answered, [language, text, 1], a picture the number of one of
// the file's pictures, or null.
let file, entries, rows, selected = new Set(), current = -1;

const LANGUAGE_CODES = {english: 'en', german: 'de', deutsch: 'de', french: 'fr', spanish: 'es', italian: 'it', portuguese: 'pt',
  dutch: 'nl', danish: 'da', swedish: 'sv', norwegian: 'nb', finnish: 'fi', polish: 'pl', czech: 'cs', slovak: 'sk', hungarian: 'hu',
  romanian: 'ro', bulgarian: 'bg', russian: 'ru', ukrainian: 'uk', greek: 'el', turkish: 'tr', arabic: 'ar', hebrew: 'he',
  persian: 'fa', urdu: 'ur', hindi: 'hi', thai: 'th', vietnamese: 'vi', chinese: 'zh', taiwanese: 'zh-Hant', japanese: 'ja', korean: 'ko'};
const RTL = /[\u0590-\u08FF\uFB1D-\uFDFF\uFE70-\uFEFF]/g, LTR = /[A-Za-z\u00C0-\u058F\u0900-\u1FFF\u3040-\uD7FF]/g;

const isBlank = text => !/\S/.test(text);
const referenceOf = item => {
  const text = file.reference < 0 ? null : item[3][file.reference];
  return text == null || isBlank(text) ? item[0] : text;
};
function stateOf(item, language) {
  const text = item[3][language];
  if (text == null) return 'missing';
  const reference = referenceOf(item);
  if (isBlank(text) && !isBlank(reference)) return 'empty';
  if (item[1] & READY) return 'ready';
  return language !== file.reference && text === reference ? 'same' : 'translated';
}

function openFile(index) {
  file = data.files[index];
  entries = [];
  for (const group of file.groups) {
    entries.push({group});
    for (const item of group.items) entries.push({group, item, order: entries.length});
  }
  file.languages.forEach((language, i) => {
    const parts = {ready: 0, translated: 0, same: 0, empty: 0, missing: 0};
    const letters = [0, 0];
    language.findings = 0;
    for (const entry of entries) {
      if (!entry.item || !(entry.item[1] & USED)) continue;
      ++parts[stateOf(entry.item, i)];
      const text = entry.item[3][i];
      if (text && letters[0] + letters[1] < 2000) {
        letters[0] += (text.match(RTL) || []).length;
        letters[1] += (text.match(LTR) || []).length;
      }
    }
    language.parts = parts;
    language.rtl = letters[0] > letters[1];
    language.code = LANGUAGE_CODES[language.name.toLowerCase()] || '';
  });
  for (const entry of entries)
    if (entry.item)
      for (const [language] of entry.item[4]) if (language >= 0) ++file.languages[language].findings;
  selected.clear();
  $('title').textContent = file.app && file.app !== 'unknown' ? file.app : file.path.replace(/^.*\//, '');
  document.title = 'Translations of ' + $('title').textContent;
  $('subtitle').textContent = [file.path, number(file.used) + ' texts in use', file.languages.length + ' languages', data.made].join('  ·  ');
  showOverview();
  fillChoices();
  choose();
  if (window.requestIdleCallback) prepareSearch(entries);
}

// ---- Overview

function showOverview() {
  const targets = file.languages.filter((_, i) => i !== file.reference);
  const of = targets.length * file.used;
  const translated = targets.reduce((sum, one) => sum + file.used - one.parts.missing - one.parts.empty, 0);
  const levels = {error: 0, warning: 0, info: 0};
  for (const entry of entries) if (entry.item) for (const [, rule] of entry.item[4]) ++levels[data.rules[rule].level];
  for (const [, rule] of file.findings) ++levels[data.rules[rule].level];
  const questions = entries.reduce((sum, one) => sum + (one.item && one.item[1] & USED ? one.item[5].filter(of => of[2]).length : 0), 0);
  const tile = (value, label, kind) => make('div', 'tile' + (kind ? ' ' + kind : ''), null, make('b', '', value), make('span', 'quiet', label));
  $('tiles').replaceChildren(
    tile(of ? percent(translated, of) : '–', 'translated'),
    tile(number(targets.reduce((sum, one) => sum + one.wordsLeft, 0)), 'words left to translate'),
    tile(number(levels.error), levels.error === 1 ? 'error' : 'errors', levels.error ? 'error' : ''),
    tile(number(levels.warning), levels.warning === 1 ? 'warning' : 'warnings', levels.warning ? 'warning' : ''),
    tile(number(levels.info), levels.info === 1 ? 'note' : 'notes'),
    ...questions ? [tile(number(questions), questions === 1 ? 'open question' : 'open questions', 'warning')] : []);
  $('languages').replaceChildren(...file.languages.map(languageRow));
  $('file-findings').hidden = file.findings.length === 0;
  $('file-findings').replaceChildren(make('h2', '', 'In the file'), ...file.findings.map(finding));
}

// Only what is complete is 100 %.
const percent = (part, all) => (Math.floor(part * 1000 / all) / 10).toLocaleString('en', {minimumFractionDigits: 1}) + ' %';

function languageRow(language, index) {
  const name = make('span', 'name', language.name);
  if (index === file.reference) name.append(make('span', 'tag', 'reference'));
  const stack = make('span', 'stack');
  stack.setAttribute('role', 'img');
  stack.setAttribute('aria-label', Object.entries(language.parts).map(([part, n]) => n + ' ' + part).join(', '));
  for (const [part, n] of Object.entries(language.parts)) {
    if (n === 0 || part === 'missing') continue;
    const piece = make('i', part);
    piece.style.flex = '0 0 ' + 100 * n / file.used + '%';
    piece.title = number(n) + ' ' + part;
    stack.append(piece);
  }
  const done = file.used - language.parts.missing - language.parts.empty;
  const left = language.parts.missing + language.parts.empty;
  const row = make('button', 'language', null, name, stack,
    make('span', 'percent', file.used ? percent(done, file.used) : '–'),
    make('span', 'number', left ? number(left) + ' to do' : 'complete'),
    make('span', 'number', left ? counted(language.wordsLeft, 'word') + ' left' : ''),
    make('span', 'number', language.findings ? counted(language.findings, 'finding') : ''));
  row.type = 'button';
  row.title = 'Show only this language; more than one may be chosen';
  row.setAttribute('aria-pressed', 'false');
  row.addEventListener('click', () => {
    if (!selected.delete(index)) selected.add(index);
    row.setAttribute('aria-pressed', String(selected.has(index)));
    choose();
  });
  return row;
}

// ---- Choosing

const STATES = [
  {name: 'All', test: item => item[1] & USED},
  {name: 'Missing', test: (item, shown) => (item[1] & USED) && shown.some(i => item[3][i] == null || stateOf(item, i) === 'empty')},
  {name: 'Not ready', test: item => (item[1] & (USED | READY)) === USED},
  {name: 'Findings', test: (item, shown) => findingsOf(item, shown).length > 0},
  {name: 'Not in use', test: item => !(item[1] & USED)},
  {name: 'Questions', test: (item, shown) => asks(item, shown)},
];
let state = 0, words = [];

const asks = (item, shown) => (item[1] & USED) && item[5].some(([language, , open]) => open && shown.includes(language));

const shownLanguages = () => selected.size ? [...selected].sort((a, b) => a - b) : file.languages.map((_, i) => i);
const findingsOf = (item, shown) => item[4].length === 0 ? item[4]
  : item[4].filter(([language, rule]) => (language < 0 || shown.includes(language)) && ($('rule').value === '' || rule === +$('rule').value));

function option(value, text) {
  const made = make('option', '', text);
  made.value = value;
  return made;
}

function fillChoices() {
  const used = new Map();
  for (const entry of entries) if (entry.item) for (const [, rule] of entry.item[4]) used.set(rule, (used.get(rule) || 0) + 1);
  $('rule').replaceChildren(option('', 'Every rule'), ...[...used].sort((a, b) => a[0] - b[0])
    .map(([rule, count]) => option(rule, `${data.rules[rule].name} (${number(count)})`)));
  $('rule-field').hidden = used.size === 0;
  $('group').replaceChildren(option('', 'Every group'), ...file.groups.map((group, i) => option(i, group.name)));
  $('states').replaceChildren(...STATES.map((one, i) => {
    const button = make('button', '', one.name, make('small'));
    button.type = 'button';
    button.addEventListener('click', () => setState(i));
    return button;
  }));
}

// What the search looks through, made when it is first wanted.
function hay(entry) {
  const item = entry.item;
  return entry.hay ??= [entry.group.name + ':' + item[0], item[2], ...item[3], ...item[4].map(one => one[2]),
    ...item[5].map(one => one[1])].filter(Boolean).join('\n').toLowerCase();
}

// Makes it while nobody waits for anything.
function prepareSearch(of, at = 0) {
  requestIdleCallback(time => {
    for (; at < of.length && time.timeRemaining() > 2; ++at) if (of[at].item) hay(of[at]);
    if (at < of.length && of === entries) prepareSearch(of, at);
  });
}

function setState(index) {
  state = index;
  if (STATES[state].name !== 'Findings') $('rule').value = '';
  choose();
}

// Fills the rows with what is chosen, and the counts.
function choose() {
  const shown = shownLanguages();
  const group = $('group').value === '' ? null : file.groups[+$('group').value];
  const counts = STATES.map(() => 0);
  words = $('search').value.toLowerCase().split(/\s+/).filter(Boolean);
  rows = [];
  let items = 0, pending = null;
  for (const entry of entries) {
    if (!entry.item) { pending = entry; continue; }
    if (group && entry.group !== group) continue;
    if (words.length && !words.every(word => hay(entry).includes(word))) continue;
    let wanted = false;
    for (let i = 0; i < STATES.length; ++i)
      if (STATES[i].test(entry.item, shown)) {
        ++counts[i];
        wanted ||= i === state;
      }
    if (!wanted) continue;
    if (pending && pending.group === entry.group) { rows.push(pending); pending = null; }
    rows.push(entry);
    ++items;
  }
  [...$('states').children].forEach((button, i) => {
    button.setAttribute('aria-pressed', String(i === state));
    button.querySelector('small').textContent = number(counts[i]);
  });
  $('count').textContent = counted(items, 'text');
  $('nothing').hidden = items > 0;
  current = -1;
  list.reset();
}

function clearChoice() {
  $('search').value = $('group').value = $('rule').value = '';
  selected.clear();
  for (const row of $('languages').children) row.setAttribute('aria-pressed', 'false');
  setState(0);
}

// ---- Rows

function marked(element, text) {
  let at = 0;
  if (words.length) {
    const lower = text.toLowerCase();
    if (lower.length === text.length) // else positions would not be the same
      for (;;) {
        let next = -1, length = 0;
        for (const word of words) {
          const found = lower.indexOf(word, at);
          if (found >= 0 && (next < 0 || found < next)) { next = found; length = word.length; }
        }
        if (next < 0) break;
        element.append(text.slice(at, next), make('mark', '', text.slice(next, next + length)));
        at = next + length;
      }
  }
  element.append(text.slice(at));
  return element;
}

function finding([, rule, message]) {
  const {name, level, meaning} = data.rules[rule];
  const box = make('div', 'finding ' + level, null, make('b', '', name));
  box.append(marked(make('span'), message));
  box.dir = 'ltr';
  box.title = level + ': ' + meaning;
  return box;
}

// "00031:src/window.c" as editors and compilers write it.
const placeOf = text => text.replace(/^0*(\d+):(.*)$/s, '$2:$1');

function cell(item, language) {
  const {name, rtl, code} = file.languages[language];
  const text = item[3][language];
  const kind = stateOf(item, language);
  const box = make('div', 'cell ' + (kind === 'missing' ? 'missing' : ''), null, make('div', 'label', name));
  if (rtl) box.dir = 'rtl';
  if (kind === 'missing') box.append(make('div', 'none', 'no text'));
  else if (kind === 'empty') box.append(make('div', 'none', 'empty'));
  else {
    const shown = marked(make('div', 'text'), text);
    shown.dir = rtl ? 'rtl' : 'auto';
    if (code) shown.lang = code;
    box.append(shown);
  }
  for (const [of, comment, open] of item[5]) if (of === language) {
    const note = marked(make('div', open ? 'comment question' : 'comment'), comment);
    note.dir = 'auto';
    box.append(note);
  }
  for (const one of item[4]) if (one[0] === language) box.append(finding(one));
  return box;
}

function itemCard({group, item}) {
  const head = make('div', 'card-head', null, marked(make('span', 'key'), group.name + ':' + item[0]));
  if (item[2] && item[2] !== 'none') head.append(marked(make('span', 'about'), item[2]));
  if (item[6].length) head.append(make('span', 'about', item[6].slice(0, 2).map(placeOf).join(', ') + (item[6].length > 2 ? `, ${item[6].length - 2} more` : '')));
  if (!(item[1] & USED)) head.append(make('span', 'badge', 'not in use'));
  else head.append(item[1] & READY ? make('span', 'badge ok', 'ready') : make('span', 'badge', 'not ready'));
  if (item[7] != null) head.append(thumb(file.pictures[item[7]], item[0]));
  const card = make('article', 'card', null, head);
  for (const one of item[4]) if (one[0] < 0) card.append(finding(one));
  card.append(make('div', 'cells', null, ...shownLanguages().map(language => cell(item, language))));
  return card;
}

function thumb(picture, name) {
  const image = make('img');
  image.src = picture;
  image.alt = '';
  const button = make('button', 'thumb', null, image);
  button.type = 'button';
  button.setAttribute('aria-label', 'Screenshot of ' + name);
  button.addEventListener('click', () => { $('shot').querySelector('img').src = picture; $('shot').showModal(); });
  return button;
}

function groupRow({group}) {
  const row = make('div', 'group-row');
  if (group.shot) row.append(thumb(group.shot, group.name));
  row.append(make('h3', '', group.name), make('span', 'quiet', counted(group.items.length, 'text')));
  return row;
}

function makeRow(index) {
  const entry = rows[index];
  const row = make('div', 'row', null, entry.item ? itemCard(entry) : groupRow(entry));
  row.setAttribute('role', 'listitem');
  row.id = 'row-' + index;
  if (entry.item) row.addEventListener('click', () => list.setCurrent(index, false));
  return row;
}

// ---- The list: only the rows in sight are there. Heights are guessed until a row was shown; their
// sums stand in a binary indexed tree, so that finding and changing one is quick.

const list = (() => {
  const box = $('list');
  let heights, tree, shown = new Map(), step;

  function build() {
    const languages = shownLanguages();
    // As many columns as fit, but every line of a card as full as the others.
    const most = Math.max(1, Math.floor(box.clientWidth / 271));
    const columns = Math.max(1, Math.ceil(languages.length / Math.ceil(languages.length / most)));
    const perLine = Math.max(10, (box.clientWidth / columns - 32) / 7.5);
    box.style.setProperty('--columns', columns || 1);
    heights = new Float64Array(rows.length);
    rows.forEach((entry, i) => { heights[i] = entry.item ? guess(entry.item, languages, columns, perLine) : entry.group.shot ? 92 : 49; });
    tree = new Float64Array(rows.length + 1);
    step = 1;
    while (step * 2 <= rows.length) step *= 2;
    for (let i = 1; i <= rows.length; ++i) {
      tree[i] += heights[i - 1];
      const parent = i + (i & -i);
      if (parent <= rows.length) tree[parent] += tree[i];
    }
  }
  function guess(item, languages, columns, perLine) {
    let height = 53;
    for (let i = 0; i < languages.length; i += columns) {
      let most = 1;
      for (const language of languages.slice(i, i + columns)) most = Math.max(most, Math.ceil((item[3][language] || '').length / perLine));
      height += 40 + 22 * most;
    }
    return height + 32 * item[4].length + (item[7] != null ? 50 : 0);
  }
  function offset(index) { // of the top of a row
    let sum = 0;
    for (let i = index; i > 0; i -= i & -i) sum += tree[i];
    return sum;
  }
  function find(y) { // the row at that height
    let at = 0;
    for (let s = step; s > 0; s >>= 1) if (at + s <= rows.length && tree[at + s] <= y) { at += s; y -= tree[at]; }
    return Math.min(at, rows.length - 1);
  }
  function measure(index, height) {
    const change = height - heights[index];
    if (Math.abs(change) < 0.5) return false;
    heights[index] = height;
    for (let i = index + 1; i <= rows.length; i += i & -i) tree[i] += change;
    return true;
  }
  const top = () => box.getBoundingClientRect().top;

  function show() {
    if (!rows.length) { box.style.height = '0'; return; }
    const margin = 600;
    const view = -top();
    // The first row that is in sight stays where it is, whatever is learnt about those before it.
    const anchor = find(Math.max(0, view));
    const inside = view - offset(anchor);
    for (let round = 0; round < 3; ++round) {
      const first = find(Math.max(0, offset(anchor) + inside - margin));
      const last = find(offset(anchor) + inside + innerHeight + margin);
      for (const [index, row] of shown) if (index < first || index > last) { row.remove(); shown.delete(index); }
      const added = document.createDocumentFragment();
      for (let i = first; i <= last; ++i) if (!shown.has(i)) {
        const row = makeRow(i);
        shown.set(i, row);
        added.append(row);
      }
      box.append(added);
      let changed = false;
      for (const [index, row] of shown) changed = measure(index, row.offsetHeight) || changed;
      if (!changed) break;
    }
    for (const [index, row] of shown) {
      row.style.transform = `translateY(${offset(index)}px)`;
      row.firstChild.classList.toggle('current', index === current);
    }
    box.style.height = offset(rows.length) + 'px';
    const moved = offset(anchor) + inside - view;
    if (view > 0 && Math.abs(moved) >= 1) scrollBy(0, moved);
  }

  let asked = false;
  function ask() {
    if (asked) return;
    asked = true;
    requestAnimationFrame(() => { asked = false; show(); });
  }
  function reset() {
    for (const row of shown.values()) row.remove();
    shown.clear();
    build();
    const start = $('bar').getBoundingClientRect();
    if (start.top <= 0) scrollTo(0, scrollY + $('texts').getBoundingClientRect().top);
    show();
  }
  // Shows the row, whole if it fits, below what stays at the top.
  function reveal(index) {
    const bar = $('bar').offsetHeight + 8;
    show();
    for (let round = 0; round < 2; ++round) {
      const y = top() + offset(index);
      if (y < bar) scrollBy(0, y - bar);
      else if (y + heights[index] > innerHeight) scrollBy(0, Math.min(y - bar, y + heights[index] - innerHeight + 8));
      show();
    }
  }
  function setCurrent(index, move = true) {
    current = index;
    box.setAttribute('aria-activedescendant', 'row-' + index);
    if (move) reveal(index); else show();
  }
  // The next row from the current one that is an item and passes the test.
  function step_(direction, test = () => true) {
    let i = current;
    if (i < 0) { // begin with what is in sight
      i = rows.length ? find(Math.max(0, -top() + $('bar').offsetHeight)) - (direction > 0 ? 1 : 0) : -1;
      if (-top() < 0 && direction > 0) i = -1;
    }
    for (i += direction; i >= 0 && i < rows.length; i += direction)
      if (rows[i].item && test(rows[i].item)) return setCurrent(i);
  }
  function edge(last) {
    const at = last ? rows.length - 1 : rows.findIndex(entry => entry.item);
    if (at >= 0) setCurrent(at);
  }
  // Everything at once, for the printer; as much as a printer should get.
  const MOST_PRINTED = 3000;
  function print() {
    for (const row of shown.values()) row.remove();
    shown.clear();
    const all = document.createDocumentFragment();
    const count = Math.min(rows.length, MOST_PRINTED);
    for (let i = 0; i < count; ++i) { const row = makeRow(i); shown.set(i, row); all.append(row); }
    box.append(all);
    $('print-note').textContent = count < rows.length ? `The first ${number(count)} of ${number(rows.length)} lines; a search or a filter prints others.` : '';
  }
  addEventListener('scroll', ask, {passive: true});
  addEventListener('resize', () => { for (const row of shown.values()) row.remove(); shown.clear(); build(); show(); });
  addEventListener('beforeprint', print);
  addEventListener('afterprint', reset);
  return {reset, setCurrent, step: step_, edge, get rendered() { return shown.size; }};
})();

// ---- Keys and the rest

function toggleTheme() {
  const dark = document.documentElement.dataset.theme ? document.documentElement.dataset.theme === 'dark'
    : matchMedia('(prefers-color-scheme: dark)').matches;
  document.documentElement.dataset.theme = dark ? 'light' : 'dark';
}

let waiting;
$('search').addEventListener('input', () => { clearTimeout(waiting); waiting = setTimeout(choose, 90); });
$('group').addEventListener('change', choose);
$('rule').addEventListener('change', () => { if ($('rule').value !== '') state = 3; choose(); });
$('file').addEventListener('change', () => openFile(+$('file').value));
$('theme').addEventListener('click', toggleTheme);
$('keys').addEventListener('click', () => $('help').showModal());
$('clear').addEventListener('click', clearChoice);
$('shot').addEventListener('click', event => { if (event.target === $('shot')) $('shot').close(); });

const KEYS = {
  '/': () => { $('search').focus(); $('search').select(); },
  j: () => list.step(1), k: () => list.step(-1),
  n: () => list.step(1, item => findingsOf(item, shownLanguages()).length > 0),
  p: () => list.step(-1, item => findingsOf(item, shownLanguages()).length > 0),
  t: toggleTheme, '?': () => $('help').showModal(), Escape: clearChoice,
};
STATES.forEach((_, i) => { KEYS[i + 1] = () => setState(i); });
const LIST_KEYS = {ArrowDown: KEYS.j, ArrowUp: KEYS.k, Home: () => list.edge(false), End: () => list.edge(true)};

addEventListener('keydown', event => {
  if (event.ctrlKey || event.metaKey || event.altKey || document.querySelector('dialog[open]')) return;
  if (event.target === $('search')) {
    if (event.key === 'Escape') { $('search').blur(); clearChoice(); }
    else if (event.key === 'Enter' || event.key === 'ArrowDown') { event.preventDefault(); clearTimeout(waiting); choose(); $('list').focus({preventScroll: true}); list.edge(false); }
    return;
  }
  if (event.target.tagName === 'SELECT' || event.target.tagName === 'INPUT') return;
  const action = KEYS[event.key] || (event.target === $('list') && LIST_KEYS[event.key]);
  if (action) { event.preventDefault(); action(); }
});
new IntersectionObserver(([seen]) => $('bar').classList.toggle('stuck', seen.intersectionRatio < 1), {threshold: [1], rootMargin: '-1px 0px 0px 0px'}).observe($('bar'));

$('file-field').hidden = data.files.length < 2;
$('file').replaceChildren(...data.files.map((one, i) => option(i, one.path)));
openFile(0);
document.documentElement.dataset.ready = 'true';
})();
