// The form of an event, which reads like a sentence. What comes of it is shown while one types.

import * as api from '../api.js';
import {wall, yearOf} from '../dates.js';
import {freshId, h, icon, replace} from '../dom.js';
import {read} from '../draft.js';
import {house} from '../house.js';
import {shortDate, t, timeText} from '../locale.js';
import {sentence} from '../sentence.js';
import {EventWords} from './eventwords.js';
import {Fields} from './fields.js';
import {warningText} from './warnings.js';

const WAIT_MS = 200;
const NAME = '/description';
/** Where an error of the API is shown, where that is not under its own name. */
const ALIASES = {
  '/time/minutes': '/time/at',
  '/time': '/time/at',
  '/repeat/nth/week': '/repeat/nth',
  '/repeat/nth/weekday': '/repeat/nth',
  '/repeat/unit': '/repeat/every',
  '/repeat': '/repeat/every',
};

export class EventForm {
  #draft;
  #options;
  #fields = new Fields(ALIASES);
  #words;
  #name;
  #preview = h('section', {class: 'card preview', 'aria-label': t('form.preview')});
  /** Whether the name was written, so that one that is missing is worth a word. */
  #named;
  #busy = false;
  #timer = null;
  #asked = null;

  /**
   * `draft` is changed as one types. `id` is the event that it would replace; `onSave(event)` sends
   * it and may throw an ApiError, whose errors go to their fields; what has no field goes to
   * `onTrouble(error)`.
   */
  constructor(draft, options) {
    this.#draft = draft;
    this.#options = options;
    this.#named = Boolean(options.id);
    this.#words = new EventWords(draft, this.#fields, (name) => this.#changed(name));
    this.#name = this.#nameInput();
    this.#words.draw();
    this.element = this.#form();
    this.#look();
  }

  focus() {
    this.#name.focus();
  }

  end() {
    clearTimeout(this.#timer);
    this.#asked?.abort();
  }

  #nameInput() {
    return this.#words.input('description', NAME, null, {
      id: freshId('name'),
      class: 'name',
      maxlength: 200,
      placeholder: t('form.namePlaceholder'),
    });
  }

  #form() {
    const card = h(
      'div',
      {class: 'card'},
      h('label', {for: this.#name.id}, t('form.name')),
      this.#name,
      this.#fields.note(NAME),
      h('fieldset', {class: 'plain'}, h('legend', null, t('form.when')), this.#words.element),
      h(
        'footer',
        null,
        h('button', {'class': 'primary', 'data-key': 'save'}, this.#options.saveLabel),
      ),
    );
    const onsubmit = (event) => {
      event.preventDefault();
      this.#submit().catch(this.#options.onTrouble);
    };
    return h('form', {class: 'eventform', novalidate: true, onsubmit}, card, this.#preview);
  }

  #changed(name) {
    this.#named ||= name === 'description';
    this.#options.onChange?.();
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#look(), WAIT_MS);
  }

  /** What would come of it, or what is wrong. */
  async #look() {
    this.#asked?.abort();
    this.#asked = new AbortController();
    const {event, errors} = read(this.#draft);
    // Without a name there is still something to see.
    const problems = errors.filter(({pointer}) => pointer !== NAME);
    const shown = this.#named ? errors : problems;
    this.#fields.show(shown);
    if (problems.length) return this.#drawPreview(h('p', {class: 'muted'}, t('form.incomplete')));
    const {id} = this.#options;
    const description = event.description || t('form.unnamed');
    try {
      const body = {...event, description, ...(id ? {id} : {})};
      const answer = await api.post('/preview', body, {signal: this.#asked.signal});
      this.#drawPreview(previewOf(answer));
    } catch (error) {
      if (error.name === 'AbortError') return;
      const homeless = this.#fields.show([...shown, ...(error.errors ?? [])]);
      const all =
        error.errors?.length && !homeless.length
          ? [t('form.incomplete')]
          : [error.message, ...homeless];
      this.#drawPreview(h('p', {class: 'error'}, all.join('; ')));
    }
  }

  #drawPreview(...content) {
    replace(this.#preview, h('h2', null, t('form.preview')), content);
  }

  async #submit() {
    if (this.#busy) return;
    this.#named = true;
    clearTimeout(this.#timer);
    const {event, errors} = read(this.#draft);
    this.#fields.show(errors);
    if (errors.length) return this.#focusWrong();
    this.#busy = true;
    try {
      await this.#options.onSave(event);
    } catch (error) {
      this.#refused(error);
    } finally {
      this.#busy = false;
    }
  }

  /** Says at their fields what the controller found wrong; throws what has none. */
  #refused(error) {
    const taken = error.kind === 'conflict' && error.errors.length === 0;
    const errors = taken ? [{pointer: NAME, detail: t('form.taken')}] : (error.errors ?? []);
    const homeless = this.#fields.show(errors);
    if (errors.length === 0 || homeless.length) throw error;
    this.#focusWrong();
  }

  #focusWrong() {
    this.element.querySelector('[aria-invalid=true]')?.focus();
  }
}

/** The event in words, the warnings, and its next occurrences. */
function previewOf({event, occurrences, warnings}) {
  return [
    h('p', {'class': 'lead', 'aria-live': 'polite'}, sentence(event, house.date())),
    warnings.length > 0 && h('ul', {class: 'warnings'}, warnings.map(warning)),
    occurrences.length > 0
      ? h('ol', {class: 'occurrences'}, occurrences.map(occurrence))
      : warnings.length === 0 && h('p', {class: 'muted'}, t('form.noOccurrences')),
  ];
}

/** Where the scheduler's calendar ends concerns nobody who gave no end: said, but no alarm. */
const REMARKS = ['ends-2038'];

function warning(one) {
  const said = warningText(one);
  if (REMARKS.includes(one.code)) return h('li', {class: 'remark'}, said);
  return h('li', null, icon('warning'), ' ', said);
}

function occurrence({date, time}) {
  const {day, minutes} = wall(time);
  const on = day ?? date;
  const year = yearOf(on) === yearOf(house.date()) ? '' : ` ${yearOf(on)}`;
  return h('li', null, h('span', null, shortDate(on), year), h('time', null, timeText(minutes)));
}
