// Brings a schedule in: first what would become of it, then the import itself.

import * as api from '../api.js';
import {button, card, field, h, icon, replace} from '../dom.js';
import {t} from '../locale.js';
import {failed, notice} from '../notices.js';

const XML = {type: 'application/xml'};

/** `done` is called after an import. */
export function importCard(done) {
  const file = h('input', {
    type: 'file',
    accept: '.xml,application/xml,text/xml',
    'data-key': 'file',
  });
  const review = h('div', {role: 'status'});
  file.addEventListener('change', () =>
    look().catch((error) => {
      replace(review, h('p', {class: 'error'}, error.message));
    }),
  );

  async function look() {
    if (!file.files.length) return replace(review);
    const text = await file.files[0].text();
    drawReview(text, await api.post('/project/import/preview', text, XML));
  }

  function drawReview(text, answer) {
    const {kept, changed, dropped} = answer;
    const findings = [...answer.whole, ...answer.findings];
    const bring = async (force) => {
      try {
        await api.post(`/project/import${force ? '?force=1' : ''}`, text, XML);
        file.value = '';
        replace(review);
        notice(t('import.done'));
        done();
      } catch (error) {
        failed(error);
      }
    };
    replace(
      review,
      h('p', {class: 'lead'}, t('import.counts', {kept, changed, dropped})),
      findings.length > 0 && h('ul', {class: 'warnings'}, findings.map(finding)),
      h('p', null, t('import.replaces')),
      h(
        'div',
        {class: 'row'},
        button(t('cancel'), () => {
          file.value = '';
          replace(review);
        }),
        button(
          dropped ? t('import.force', {n: dropped}) : t('import.do'),
          () => bring(dropped > 0),
          {kind: dropped ? 'danger' : 'primary', 'data-key': 'import'},
        ),
      ),
    );
  }

  const what = h('p', null, t('import.what'));
  return {element: card(t('import.title'), what, field(t('import.file'), file), review)};
}

/** Something about the schedule itself, or what there is to say about one of its events. */
function finding({text, position, description, findings}) {
  const name = description ? `“${description}”` : t('import.position', {n: position});
  const said = findings ? `${name}: ${findings.map((one) => one.text).join('; ')}` : text;
  return h('li', null, icon('warning'), ' ', said);
}
