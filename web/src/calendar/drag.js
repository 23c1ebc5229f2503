// Dragging a chip to another day or time, by mouse, pen, a long press of a finger, or by the arrow keys
// with Shift. What it does can also be done by "Move" of the event's dialog, without dragging.

import {addDays} from '../dates.js';
import {h} from '../dom.js';
import {shortDate, timeText} from '../locale.js';
import {HOUR_PX} from './hours.js';

const FAR_PX = 5;
const PRESS_MS = 450;
const STEP_MINUTES = 5;
const EDGE_PX = 36;
const KEY_MINUTES = 15;

/** Where an arrow key puts an occurrence: sideways by days, up and down by the rows that are shown. */
function steppedTo({day, minutes}, key, byHours) {
  const sideways = {ArrowLeft: -1, ArrowRight: 1}[key];
  if (sideways) return {date: addDays(day, sideways), minutes};
  const rows = {ArrowUp: -1, ArrowDown: 1}[key];
  if (!rows) return null;
  if (!byHours) return {date: addDays(day, 7 * rows), minutes};
  const at = minutes + KEY_MINUTES * rows;
  return {date: day, minutes: Math.max(0, Math.min(1439, at))};
}

/**
 * Watches `stage`; `dropped(occurrence, {date, minutes}, byKey)` where one was put elsewhere. Where a
 * day has no hours the time stays.
 */
export function dragging(stage, dropped) {
  let held = null; // {chip, x, y, timer, ghost, target}

  const start = () => {
    const ghost = h(
      'div',
      {class: 'ghost'},
      held.chip.querySelector('.name').textContent,
      ' ',
      h('strong'),
    );
    document.body.append(ghost);
    held.ghost = ghost;
    held.chip.classList.add('dragged');
    stage.classList.add('dragging');
  };

  const stop = () => {
    if (!held) return;
    clearTimeout(held.timer);
    held.ghost?.remove();
    held.chip.classList.remove('dragged');
    stage.classList.remove('dragging');
    stage.querySelector('.droptarget')?.classList.remove('droptarget');
    held = null;
  };

  const scrolled = () => stage.querySelector('.scroll')?.scrollTop ?? 0;

  const targetAt = (x, y) => {
    const place = document.elementFromPoint(x, y)?.closest('[data-day]');
    if (!place || !stage.contains(place)) return null;
    const {minutes} = held.chip.occurrence;
    const moved = y - held.y + scrolled() - held.scrolled;
    const steps = Math.round(((moved / HOUR_PX) * 60) / STEP_MINUTES);
    // To another day only: the minute stays as it was.
    if (place.dataset.hours === undefined || steps === 0)
      return {place, date: place.dataset.day, minutes};
    const at = (Math.round(minutes / STEP_MINUTES) + steps) * STEP_MINUTES;
    return {place, date: place.dataset.day, minutes: Math.max(0, Math.min(1435, at))};
  };

  const scrollAt = (y) => {
    const box = stage.querySelector('.scroll');
    if (!box) return;
    const {top, bottom} = box.getBoundingClientRect();
    if (y < top + EDGE_PX) box.scrollTop -= 12;
    else if (y > bottom - EDGE_PX) box.scrollTop += 12;
  };

  const move = (x, y) => {
    scrollAt(y);
    held.target = targetAt(x, y);
    stage.querySelector('.droptarget')?.classList.remove('droptarget');
    held.target?.place.classList.add('droptarget');
    Object.assign(held.ghost.style, {transform: `translate(${x + 12}px, ${y + 12}px)`});
    held.ghost.querySelector('strong').textContent = held.target
      ? `${shortDate(held.target.date)} ${timeText(held.target.minutes)}`
      : '';
  };

  const listeners = {
    pointerdown: (event) => {
      const chip = event.target.closest?.('[data-drag]');
      if (!chip || event.button !== 0 || held) return;
      held = {
        chip,
        x: event.clientX,
        y: event.clientY,
        scrolled: scrolled(),
        touch: event.pointerType === 'touch',
      };
      if (held.touch) held.timer = setTimeout(start, PRESS_MS);
    },
    pointermove: (event) => {
      if (!held) return;
      const far = Math.hypot(event.clientX - held.x, event.clientY - held.y) > FAR_PX;
      if (!held.ghost) {
        if (!far) return;
        if (held.touch) return stop(); // It scrolls.
        start();
      }
      move(event.clientX, event.clientY);
    },
    pointerup: () => {
      if (!held?.ghost) return stop();
      const {chip, target} = held;
      stop();
      // The click that follows is the end of the drag.
      addEventListener(
        'click',
        (click) => {
          click.stopPropagation();
          click.preventDefault();
        },
        {capture: true, once: true, signal: AbortSignal.timeout(50)},
      );
      const {day, minutes} = chip.occurrence;
      if (target && (target.date !== day || target.minutes !== minutes)) {
        dropped(chip.occurrence, {date: target.date, minutes: target.minutes});
      }
    },
    pointercancel: stop,
    keydown: (event) => {
      if (event.key === 'Escape' && held) stop();
    },
  };
  for (const [name, listener] of Object.entries(listeners)) {
    (name === 'pointerdown' ? stage : window).addEventListener(name, listener);
  }
  stage.addEventListener('keydown', (event) => {
    const chip = event.target.closest?.('[data-drag]');
    if (!chip || !event.shiftKey || event.ctrlKey || event.altKey || event.metaKey) return;
    const byHours = chip.closest('[data-hours]') !== null;
    const target = steppedTo(chip.occurrence, event.key, byHours);
    if (!target) return;
    event.preventDefault();
    dropped(chip.occurrence, target, true);
  });
  // A finger that drags does not scroll.
  const noScroll = (event) => held?.ghost && event.preventDefault();
  stage.addEventListener('touchmove', noScroll, {passive: false});
  stage.addEventListener('contextmenu', (event) => held?.touch && event.preventDefault());

  return {
    active: () => Boolean(held?.ghost),
    end: () => {
      stop();
      for (const [name, listener] of Object.entries(listeners))
        window.removeEventListener(name, listener);
    },
  };
}
