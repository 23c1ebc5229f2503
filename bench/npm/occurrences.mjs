// Occurrences of a thousand mixed rules over the 366 days of 2024 in New York, by the peers from npm: the
// mixture of ../OccurrencesBench.cpp. Prints nanoseconds of the wall clock for each occurrence.
import rrule from 'rrule';
import { DateTime, RRuleSet } from 'rrule-rust';

const { rrulestr } = rrule;

const kRules = 1000;
const kZone = 'America/New_York';
const kDays = ['SU', 'MO', 'TU', 'WE', 'TH', 'FR', 'SA'];

// A generator with a seed, so that every run has the same rules.
let state = 20240306;
function from(low, high) {
  state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
  return low + (state % (high - low + 1));
}

function rule() {
  const start = new Date(Date.UTC(2023, 0, from(1, 365), from(0, 23), from(0, 59)));
  const day = start.getUTCDate();
  const weekday = kDays[from(0, 6)];
  const kind = from(0, 99);
  if (kind < 20) {
    const once = new Date(Date.UTC(2024, 0, from(1, 366), from(0, 23), from(0, 59)));
    return { start: once, text: 'FREQ=DAILY;COUNT=1' };
  }
  if (kind < 40) return { start, text: `FREQ=DAILY;INTERVAL=${from(1, 3)}` };
  if (kind < 70) {
    const mask = from(1, 127);
    const days = kDays.filter((_, bit) => (mask >> bit) & 1).join(',');
    return { start, text: `FREQ=WEEKLY;INTERVAL=${from(1, 2)};WKST=SU;BYDAY=${days}` };
  }
  if (kind < 85) return { start, text: `FREQ=MONTHLY;BYMONTHDAY=${day}` };
  if (kind < 90) return { start, text: `FREQ=MONTHLY;BYDAY=${from(1, 4)}${weekday}` };
  if (kind < 95) return { start, text: `FREQ=MONTHLY;BYDAY=-1${weekday}` };
  return { start, text: 'FREQ=YEARLY' };
}

function measure(name, sets, between) {
  let occurrences = 0;
  let best = Infinity;
  for (let round = 0; round < 5; ++round) {
    occurrences = 0;
    const begin = process.hrtime.bigint();
    for (const set of sets) occurrences += between(set).length;
    best = Math.min(best, Number(process.hrtime.bigint() - begin) / occurrences);
  }
  console.log(`${name}: ${best.toFixed(0)} ns each, ${occurrences} occurrences`);
}

const rules = Array.from({ length: kRules }, rule);
const year = [new Date(Date.UTC(2024, 0, 1)), new Date(Date.UTC(2024, 11, 31, 23, 59, 59))];
// In UTC: with a zone it converts every date through Intl, which costs hundreds of microseconds.
measure(
  'rrule, in UTC',
  rules.map(({ start, text }) => {
    const stamp = start.toISOString().replace(/[-:]/g, '').slice(0, 15);
    return rrulestr(`DTSTART:${stamp}Z\nRRULE:${text}`, { cache: false });
  }),
  (set) => set.between(year[0], year[1], true),
);
const first = DateTime.create(2024, 1, 1, 5, 0, 0, true);
const last = DateTime.create(2025, 1, 1, 4, 59, 59, true);
measure(
  'rrule-rust',
  rules.map(({ start, text }) => {
    const stamp = start.toISOString().replace(/[-:]/g, '').slice(0, 15);
    const set = RRuleSet.fromString(`DTSTART;TZID=${kZone}:${stamp}\nRRULE:${text}`);
    set.cache.disable();
    return set;
  }),
  (set) => set.between(first, last, true),
);
