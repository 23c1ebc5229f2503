// How this page shows things, for this browser alone.

import {card, choice, field, h} from '../dom.js';
import {house} from '../house.js';
import {choose, setting, t} from '../locale.js';

export function settingsCard() {
  const line = (name, values) =>
    field(
      t(`set.${name}`),
      choice(
        values.map((value) => [value, t(`set.${name}.${value}`)]),
        setting(name),
        (value) => choose(name, value),
        {'data-key': `set-${name}`},
      ),
    );
  const about = h('p', {class: 'muted'});
  return {
    element: card(
      t('set.card'),
      h('p', {class: 'muted'}, t('set.what')),
      line('language', ['auto', 'en', 'de']),
      line('clock', ['auto', '24', '12']),
      line('week', ['auto', '1', '0', '6']),
      line('theme', ['auto', 'light', 'dark']),
      about,
    ),
    draw: () => {
      about.textContent = t('about', {version: house.project.version, n: house.events.size});
    },
  };
}
