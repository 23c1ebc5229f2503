// Points on the earth, as people write and read them.

import {numberText, t} from './locale.js';

/** "52.52, 13.405", with a point or comma as decimals say it, N, S, E, W, or "52°31′ N, 13°24′ E". */
export function readPlace(typed) {
  // Minutes and seconds of arc are parts of a degree.
  const text = typed.replace(
    /(\d{1,3})\s*°\s*(\d{1,2}(?:[.,]\d+)?)\s*[′'](?:\s*(\d{1,2}(?:[.,]\d+)?)\s*(?:[″"]|''))?/g,
    (all, degrees, minutes, seconds = '0') => {
      const [m, s] = [minutes, seconds].map((part) => Number(part.replace(',', '.')));
      return String(Number((Number(degrees) + m / 60 + s / 3600).toFixed(6)));
    },
  );
  const parts =
    /^\s*([+-]?\d{1,3}(?:[.,]\d+)?)\s*°?\s*([NS])?\s*[,;\s]\s*([+-]?\d{1,3}(?:[.,]\d+)?)\s*°?\s*([EOW])?\s*$/i.exec(
      text.replace(/−/g, '-'),
    );
  if (!parts) return null;
  const latitude = Number(parts[1].replace(',', '.')) * (/s/i.test(parts[2] ?? '') ? -1 : 1);
  const longitude = Number(parts[3].replace(',', '.')) * (/w/i.test(parts[4] ?? '') ? -1 : 1);
  return Math.abs(latitude) <= 90 && Math.abs(longitude) <= 180 ? {latitude, longitude} : null;
}

/** "52.52° N, 13.41° E" */
export function placeText({latitude, longitude}) {
  const side = (degrees, [plus, minus]) =>
    `${numberText(Math.abs(degrees))}° ${degrees < 0 ? minus : plus}`;
  return `${side(latitude, [t('north'), t('south')])}, ${side(longitude, [t('east'), t('west')])}`;
}
