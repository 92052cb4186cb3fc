'use strict';
// The page stands without this script. With it come filter, sort and why each cell is what it is.
// Texts enter the document as text alone.
(() => {
const byId = id => document.getElementById(id);
const data = JSON.parse(byId('data').textContent);
const number = new Intl.NumberFormat('en');
const collator = new Intl.Collator('en', {numeric: true});

const kTail = 12;  // characters at the end of a name that are shown in any case
const kMargin = 5; // rows that are drawn above and below those in sight

const grid = byId('grid'), matrix = byId('matrix'), detail = byId('detail');
const head = matrix.tHead.rows[0], body = matrix.tBodies[0];
const rowHeight = parseFloat(getComputedStyle(document.documentElement).fontSize) * 1.75;

// A letter for each outcome, from the key of the page.
const letters = new Map([...document.querySelectorAll('.key .letter')].map(
    sign => [sign.dataset.outcome, sign.textContent]));
const ranks = new Map([...letters.keys()].map((outcome, rank) => [outcome, rank]));

// A row has one file, or all those that every player treats alike.
const rows = data.files.map(({path, others = [], source, cells}) => ({
    names: [path, ...others], source, whys: cells.map(cell => cell === null ? null : data.whys[cell]),
    search: [path, ...others].join('\n').toLowerCase(),
    kept: cells.filter(cell => cell !== null && data.whys[cell].outcome === 'kept').length,
}));
const state = {text: '', player: -1, reason: null, outcomes: new Set(letters.keys()),
               sort: null, descending: false, row: 0, column: 0};
let order = rows;   // sorted
let shown = [];     // and filtered
let players = [];   // the columns
let drawn = new Map();
let opened = null;  // the cell in the detail

function textOf(number) { return data.texts[number].text; }

function make(name, attributes = {}, ...children) {
    const element = document.createElement(name);
    for (const [key, value] of Object.entries(attributes))
        if (value !== undefined) element.setAttribute(key, value);
    element.append(...children);
    return element;
}

function letter(outcome) {
    return make('span', {class: `letter ${outcome}`}, letters.get(outcome));
}

// Sort and filter

const sortKeys = {
    file: (a, b) => collator.compare(a.names[0], b.names[0]),
    kept: (a, b) => b.kept - a.kept,
};

function byPlayer(player) {
    return (a, b) => {
        const [one, other] = [a.whys[player], b.whys[player]];
        return one && other ? ranks.get(one.outcome) - ranks.get(other.outcome) ||
                              one.ofMany - other.ofMany : 0;
    };
}

/// The first time upwards, the second downwards, the third as the files were given.
function sortBy(column) {
    if (state.sort !== column) [state.sort, state.descending] = [column, false];
    else if (!state.descending) state.descending = true;
    else state.sort = null;
    const compare = sortKeys[state.sort] ?? byPlayer(Number(state.sort));
    const sign = state.descending ? -1 : 1;
    order = state.sort === null ? rows : [...rows].sort((a, b) => sign * compare(a, b));
    for (const th of head.cells) {
        if (th.dataset.sort === state.sort)
            th.setAttribute('aria-sort', state.descending ? 'descending' : 'ascending');
        else th.removeAttribute('aria-sort');
    }
    filter();
}

function isOwedTo(why, {outcome, part, text}) {
    return why.outcome === outcome && (why.part ?? '') === part && textOf(why.ofMany) === text;
}

function matches(row) {
    if (state.text && !row.search.includes(state.text)) return false;
    if (state.reason && !isOwedTo(row.whys[state.reason.player], state.reason)) return false;
    return state.outcomes.size === letters.size ||
        players.some(player => state.outcomes.has(row.whys[player]?.outcome));
}

function filter() {
    shown = order.filter(matches);
    state.row = Math.max(0, Math.min(state.row, shown.length - 1));
    grid.scrollTop = 0;
    drawHead();
    const files = list => list.reduce((sum, row) => sum + row.names.length, 0);
    const all = files(rows);
    byId('status').textContent = `${number.format(files(shown))} of ${number.format(all)} files` +
        (all > rows.length ? ` in ${number.format(shown.length)} groups treated alike` : '');
}

/// What the form and the tables above say, to the state.
function choose(change) {
    Object.assign(state, change);
    byId('player').value = state.player;
    const chip = byId('reason');
    chip.hidden = !state.reason;
    chip.textContent = `Reason ${state.reason?.number} ✕`;
    chip.setAttribute('aria-label', `Reason ${state.reason?.number}: show those of all again`);
    for (const tr of document.querySelectorAll('tr.chosen')) tr.classList.remove('chosen');
    byId('players').tBodies[0].rows[state.player]?.classList.add('chosen');
    byId('reasons').tBodies[0].rows[state.reason?.number - 1]?.classList.add('chosen');
    players = state.player < 0 ? [...data.profiles.keys()] : [state.player];
    state.column = Math.min(state.column, players.length - 1);
    filter();
}

function readForm() {
    const boxes = byId('outcomes').querySelectorAll('input:checked');
    choose({text: byId('text').value.toLowerCase(), player: Number(byId('player').value),
            outcomes: new Set([...boxes].map(box => box.value))});
}

// The table: only rows in sight are drawn

function drawHead() {
    const column = (sort, kind, text) => {
        const th = make('th', {scope: 'col', class: kind, 'data-sort': sort},
                        make('button', {type: 'button', tabindex: -1, title: `Sort by ${text}`}, text));
        if (sort === state.sort)
            th.setAttribute('aria-sort', state.descending ? 'descending' : 'ascending');
        return th;
    };
    const key = players.join();
    if (head.dataset.players !== key) {
        head.dataset.players = key;
        head.replaceChildren(column('file', 'file', 'File'), column('kept', 'count', 'Kept'),
            ...players.map(player => column(String(player), 'player', data.profiles[player].name)));
    }
    grid.classList.toggle('single', state.player >= 0);
    grid.style.setProperty('--players', state.player < 0 ? players.length : 16); // or as wide
    matrix.setAttribute('aria-rowcount', shown.length + 1);
    body.replaceChildren(gap(0), gap(shown.length)); // as high as it will be
    drawn = new Map();
    draw();
}

/// What takes the place of rows that are not drawn.
function gap(rows) {
    const tr = make('tr', {class: 'gap', 'aria-hidden': 'true'},
                    make('td', {colspan: players.length + 2}));
    setRows(tr, rows);
    return tr;
}

function setRows(tr, rows) {
    tr.firstChild.style.height = `${rows * rowHeight}px`;
}

function draw() {
    const first = Math.max(0, Math.floor(grid.scrollTop / rowHeight) - kMargin);
    const seen = Math.ceil((grid.scrollTop + grid.clientHeight - head.offsetHeight) / rowHeight);
    const last = Math.min(shown.length, seen + kMargin);
    for (const [index, tr] of drawn) {
        if (index >= first && index < last) continue;
        if (tr.contains(document.activeElement)) grid.focus({preventScroll: true});
        tr.remove();
        drawn.delete(index);
    }
    const end = body.lastChild;
    const start = body.firstChild.nextSibling; // what is above it comes before it
    const lowest = Math.min(...drawn.keys());
    for (let index = first; index < last; ++index) {
        if (drawn.has(index)) continue;
        drawn.set(index, drawRow(index));
        body.insertBefore(drawn.get(index), index < lowest ? start : end);
    }
    setRows(body.firstChild, first);
    setRows(end, shown.length - last);
    markStop(Math.min(first + kMargin, shown.length - 1));
}

function drawRow(index) {
    const row = shown[index];
    return make('tr', {'aria-rowindex': index + 2}, fileCell(row),
                make('td', {class: 'number'}, row.kept),
                ...players.map(player => drawCell(row, player)));
}

function fileCell(row) {
    const name = row.names[0], base = name.lastIndexOf('/') + 1, others = row.names.length - 1;
    const tail = Math.max(base, name.length - kTail);
    return make('th', {scope: 'row', class: 'file', title: name}, make('span', {},
        base ? make('span', {class: 'folder'}, name.slice(0, base)) : '',
        make('span', {class: 'stem'}, name.slice(base, tail)), make('span', {}, name.slice(tail)),
        make('span', {class: 'more'}, others ? ` + ${number.format(others)}` : '')));
}

/// A table has thousands of cells in sight: those of an outcome are copies of one.
const cellsOf = new Map([...letters].map(([outcome, sign]) => [outcome,
    make('td', {class: outcome, tabindex: -1, 'aria-label': `${sign}: ${outcome}`}, sign)]));

function drawCell(row, player) {
    const why = row.whys[player];
    if (!why) return make('td', {class: 'none', tabindex: -1, title: data.profiles[player].error}, '!');
    const cell = cellsOf.get(why.outcome).cloneNode(true);
    cell.title = textOf(why.reason);
    if (state.player >= 0) {
        cell.append(make('span', {}, cell.title));
        cell.removeAttribute('aria-label');
    }
    if (opened?.row === row && opened.player === player) cell.ariaSelected = 'true';
    return cell;
}

/// Row -1 is the head, whose first columns are the file and by how many players it is kept.
function cellAt(row, column) {
    return row < 0 ? head.cells[column + 2].firstChild : drawn.get(row)?.cells[column + 2];
}

/// The table is one tab stop: the cell that was last used, or the first in sight.
function markStop(inSight) {
    for (const old of body.querySelectorAll('[tabindex="0"]')) old.tabIndex = -1;
    for (const th of head.cells) th.firstChild.tabIndex = -1;
    const stop = cellAt(state.row, state.column) ?? cellAt(inSight, Math.max(0, state.column));
    stop.tabIndex = 0;
}

function moveTo(row, column) {
    state.row = Math.max(-1, Math.min(row, shown.length - 1));
    state.column = Math.max(state.row < 0 ? -2 : 0, Math.min(column, players.length - 1));
    const top = state.row * rowHeight, room = grid.clientHeight - head.offsetHeight - rowHeight;
    if (top < grid.scrollTop) grid.scrollTop = top;
    if (top > grid.scrollTop + room) grid.scrollTop = top - room;
    draw();
    cellAt(state.row, state.column).focus();
}

const steps = {
    ArrowUp: [-1, 0], ArrowDown: [1, 0], ArrowLeft: [0, -1], ArrowRight: [0, 1],
    PageUp: [-10, 0], PageDown: [10, 0], Home: [0, -Infinity], End: [0, Infinity],
    'Ctrl+Home': [-Infinity, -Infinity], 'Ctrl+End': [Infinity, Infinity],
};

// Why a cell is what it is

/// A text of the tool, and the element of the profile that it speaks of.
function lineOf(player, number) {
    const {text, line} = data.texts[number];
    const item = make('li', {}, text);
    const rule = line && data.profiles[player].rules.find(rule => rule.line === line);
    if (rule) item.append(make('pre', {}, make('span', {}, `${line}  `), rule.text));
    return item;
}

function show(row, player) {
    const why = row.whys[player], who = data.profiles[player];
    const others = row.names.length - 1;
    const title = make('h2', {id: 'detail-title', tabindex: -1}, who.name);
    const section = (heading, ...numbers) => detail.append(make('h3', {}, heading.replace(/:$/, '')),
        make('ol', {}, ...numbers.map(number => lineOf(player, number))));
    detail.replaceChildren(
        title, make('button', {type: 'button', id: 'close'}, 'Close'),
        make('p', {class: 'path'}, `${who.device}, ${who.path}`),
        make('p', {}, letter(why.outcome), ` ${why.outcome}: ${textOf(why.reason)}`),
        make('h3', {}, 'File'), make('p', {}, row.names[0]),
        make('p', {class: 'quiet'}, row.source ?? ''));
    if (others) detail.append(make('details', {},
        make('summary', {}, `and ${number.format(others)} more for the same reasons; the values are of this one`),
        make('ul', {}, ...row.names.slice(1).map(other => make('li', {}, other)))));
    section('Decision', ...why.lines);
    for (const walk of why.visited) {
        const [heading, ...rules] = data.visited[walk];
        section(textOf(heading), ...rules);
    }
    opened = {row, player};
    detail.hidden = false;
    detail.scrollTop = 0;
    document.body.classList.add('open');
    for (const old of body.querySelectorAll('[aria-selected]')) old.ariaSelected = null;
    const cell = cellAt(state.row, state.column);
    cell.ariaSelected = 'true';
    cell.scrollIntoView({block: 'nearest', inline: 'nearest'});
    title.focus({preventScroll: true});
}

function openCell(cell) {
    if (!cell) return;
    [state.row, state.column] = [cell.parentNode.ariaRowIndex - 2, cell.cellIndex - 2];
    markStop(state.row);
    if (shown[state.row].whys[players[state.column]])
        show(shown[state.row], players[state.column]);
}

function close() {
    opened = null;
    detail.hidden = true;
    document.body.classList.remove('open');
    for (const old of body.querySelectorAll('[aria-selected]')) old.ariaSelected = null;
    (cellAt(state.row, state.column) ?? grid).focus({preventScroll: true});
}

// What the tables above turn into, and what is listened to

/// The text of a row becomes a link that filters and leads to the files.
function offer(tr, change) {
    const text = tr.querySelector('.pick');
    if (!text) return;
    const link = make('a', {href: '#files'}, ...text.childNodes);
    text.replaceChildren(link);
    link.addEventListener('click', () => choose(change));
}

function start() {
    for (const [player, {name}] of data.profiles.entries())
        byId('player').append(make('option', {value: player}, name));
    for (const outcome of letters.keys())
        byId('outcomes').append(make('label', {}, make('input',
            {type: 'checkbox', value: outcome, checked: ''}), letter(outcome), outcome));
    for (const [player, tr] of [...byId('players').tBodies[0].rows].entries()) offer(tr, {player});
    for (const [index, tr] of [...byId('reasons').tBodies[0].rows].entries()) {
        const {player, outcome, part} = tr.dataset, text = tr.querySelector('.pick')?.textContent;
        offer(tr, {player: Number(player),
                   reason: {number: index + 1, player: Number(player), outcome, part, text}});
    }
    const longest = Math.max(...data.profiles.map(({name}) => name.length));
    grid.style.setProperty('--head', `${Math.min(13, 2 + longest / 2)}rem`);
    byId('filter').hidden = grid.hidden = false;

    byId('filter').addEventListener('input', readForm);
    byId('filter').addEventListener('submit', event => event.preventDefault());
    byId('filter').addEventListener('reset', () => choose({
        text: '', player: -1, reason: null, outcomes: new Set(letters.keys())}));
    byId('reason').addEventListener('click', () => {
        choose({reason: null});
        byId('text').focus();
    });
    head.addEventListener('click', event => {
        const column = event.target.closest('th')?.dataset.sort;
        if (column) sortBy(column);
    });
    body.addEventListener('click', event => openCell(event.target.closest('td[tabindex]')));
    grid.addEventListener('keydown', event => {
        if (body.contains(event.target) && [' ', 'Enter'].includes(event.key)) {
            event.preventDefault();
            return openCell(event.target);
        }
        const step = steps[`${event.ctrlKey ? 'Ctrl+' : ''}${event.key}`];
        if (!step || event.altKey || event.metaKey) return;
        event.preventDefault();
        moveTo(state.row + step[0], state.column + step[1]);
    });
    grid.addEventListener('scroll', () => requestAnimationFrame(draw), {passive: true});
    new ResizeObserver(draw).observe(grid);
    detail.addEventListener('click', event => event.target.id === 'close' && close());
    document.addEventListener('keydown', event => {
        if (event.key === 'Escape' && opened) close();
    });
    choose({});
}

start();
})();
