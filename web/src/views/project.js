// The house: its name and place, being away, the schedule in and out, backups, and how this page
// shows things.

import * as api from '../api.js';
import {addDays} from '../dates.js';
import {button, card, field, h} from '../dom.js';
import {house} from '../house.js';
import {dateText, t} from '../locale.js';
import {failed, notice} from '../notices.js';
import {placeText, readPlace} from '../place.js';
import {backupCard, exportCard} from './backups.js';
import {importCard} from './import.js';
import {settingsCard} from './settings.js';

export function project(root) {
  const cards = [
    nameCard(),
    placeCard(),
    awayCard(),
    exportCard(),
    importCard(() => backups.read()),
    backupCard(),
    settingsCard(),
  ];
  const backups = cards[5];
  root.append(
    h('h1', {tabindex: '-1'}, t('nav.project')),
    h(
      'div',
      {class: 'cards'},
      cards.map(({element}) => element),
    ),
  );
  const draw = () => cards.forEach((card) => card.draw?.());
  draw();
  return {
    title: t('nav.project'),
    on: {project: draw, replaced: () => backups.read(), connection: draw},
  };
}

/** Changes the project; the undo puts back what was there. */
async function change(patch, text) {
  const before = Object.fromEntries(
    Object.keys(patch).map((key) => [key, house.project[key] ?? null]),
  );
  if (before.place)
    before.place = {latitude: before.place.latitude, longitude: before.place.longitude};
  await api.patch('/project', patch);
  notice(text, {undo: () => api.patch('/project', before)});
}

/** A form whose errors stand below it. */
function smallForm(children, submit) {
  const note = h('p', {class: 'error', role: 'alert'});
  return h(
    'form',
    {
      novalidate: true,
      onsubmit: async (event) => {
        event.preventDefault();
        note.textContent = '';
        try {
          await submit();
        } catch (error) {
          note.textContent = error.errors?.map(({detail}) => detail).join('; ') || error.message;
        }
      },
    },
    children,
    note,
  );
}

function nameCard() {
  const name = h('input', {maxlength: 200, 'data-key': 'name'});
  const element = card(
    t('project.name'),
    smallForm(
      [field(t('project.nameLabel'), name), h('button', {'data-key': 'save-name'}, t('save'))],
      () => change({name: name.value.trim()}, t('project.named')),
    ),
  );
  let shown = null;
  return {
    element,
    draw: () => {
      if (shown !== house.project.name) name.value = shown = house.project.name;
    },
  };
}

/** Without what one may leave out or write in another way: "sao paulo". */
const plain = (text) => text.normalize('NFD').replace(/\p{M}/gu, '').trim().toLowerCase();

function placeCard() {
  const now = h('p', {class: 'lead'});
  const warning = h('p', {class: 'held'});
  const list = h('datalist', {id: 'cities'});
  const city = h('input', {
    list: 'cities',
    autocomplete: 'off',
    'data-key': 'city',
    placeholder: t('project.cityHint'),
  });
  const typed = h('input', {
    autocomplete: 'off',
    'data-key': 'place',
    inputmode: 'text',
    placeholder: '52.52, 13.405',
  });
  const noCity = h('p', {class: 'error', role: 'status'});
  let cities = null;
  const load = async () => {
    if (cities) return;
    cities = new Map();
    try {
      const answer = await api.get('/project/cities');
      for (const one of answer.cities)
        cities.set(`${one.city} (${one.country ? `${one.country}, ` : ''}${one.zone})`, one);
      list.replaceChildren(...[...cities.keys()].sort().map((value) => h('option', {value})));
    } catch (error) {
      cities = null;
      failed(error);
    }
  };
  city.addEventListener('focus', load);
  const found = () => {
    const [labels, wanted] = [[...(cities ?? [])], plain(city.value)];
    const one =
      labels.find(([label]) => plain(label).startsWith(wanted)) ??
      labels.find(([label]) => plain(label).includes(wanted));
    return one?.[1];
  };
  /** Takes the point of the city that is written; whether there is none of that name. */
  const take = () => {
    const one = cities?.get(city.value) ?? (plain(city.value) && found());
    if (one) typed.value = `${one.latitude}, ${one.longitude}`;
    const unknown = Boolean(cities && plain(city.value) && !one);
    noCity.textContent = unknown ? t('project.noCity', {text: city.value.trim()}) : '';
    city.toggleAttribute('aria-invalid', unknown);
    if (unknown) city.setAttribute('aria-invalid', 'true');
  };
  city.addEventListener('change', () => {
    if (cities) take();
    else load().then(take);
  });
  const form = smallForm(
    [
      field(t('project.city'), city),
      noCity,
      list,
      field(t('project.typed'), typed, t('project.typedHint')),
      h('button', {'data-key': 'save-place'}, t('project.setPlace')),
    ],
    async () => {
      const place = readPlace(typed.value);
      if (!place) throw new Error(t('project.noPlace', {text: typed.value}));
      await change({place}, t('project.placed', {place: placeText(place)}));
    },
  );
  const element = card(t('project.place'), now, warning, form);
  let shown = null;
  return {
    element,
    draw: () => {
      const {place, timezone} = house.project;
      now.textContent = `${placeText(place)} · ${timezone.name}`;
      warning.textContent = place.guessed ? t('project.guessed') : '';
      const text = `${place.latitude}, ${place.longitude}`;
      if (shown !== text) typed.value = shown = text;
    },
  };
}

function awayCard() {
  const state = h('p');
  const until = h('input', {type: 'date', 'data-key': 'away'});
  const back = button(
    t('project.back'),
    () => change({away_until: null}, t('project.isBack')).catch(failed),
    {'data-key': 'back'},
  );
  const element = card(
    t('project.away'),
    state,
    smallForm(
      [
        field(t('project.awayUntil'), until, t('project.awayHint')),
        h('div', {class: 'row'}, h('button', {'data-key': 'save-away'}, t('project.goAway')), back),
      ],
      async () => {
        if (!until.value) throw new Error(t('form.noDate'));
        await change({away_until: until.value}, t('project.isAway', {date: dateText(until.value)}));
      },
    ),
  );
  return {
    element,
    draw: () => {
      const away = house.project.away_until;
      until.min = addDays(house.date(), 1);
      if (document.activeElement !== until) until.value = away ?? '';
      state.textContent = away ? t('project.isAway', {date: dateText(away)}) : t('project.atHome');
      back.hidden = !away;
    },
  };
}
