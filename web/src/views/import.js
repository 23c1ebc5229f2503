// Brings a schedule in: first what would become of it, then the import itself.

import * as api from '../api.js';
import {button, field, h, icon, replace} from '../dom.js';
import {t} from '../locale.js';
import {failed, notice} from '../notices.js';

const XML = {type: 'application/xml'};

/** `done` is called after an import. */
export function importCard(done) {
  const file = h('input', {type: 'file', accept: '.xml,application/xml,text/xml', 'data-key': 'file'});
  const review = h('div', {role: 'status'});
  file.addEventListener('change', () => look().catch((error) => {
    replace(review, h('p', {class: 'error'}, error.message));
  }));

  async function look() {
    if (!file.files.length) return replace(review);
    const text = await file.files[0].text();
    drawReview(text, await api.post('/project/import/preview', text, XML));
  }

  function drawReview(text, answer) {
    const {kept = 0, changed = 0, dropped = 0} = answer;
    const findings = [...answer.whole ?? [], ...(answer.events ?? []).filter(({findings: of}) => of?.length)];
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
    replace(review,
      h('p', {class: 'lead'}, t('import.counts', {kept, changed, dropped})),
      findings.length > 0 && h('ul', {class: 'warnings'}, findings.map(finding)),
      h('p', null, t('import.replaces')),
      h('div', {class: 'row'}, button(t('cancel'), () => {
        file.value = '';
        replace(review);
      }), button(dropped ? t('import.force', {n: dropped}) : t('import.do'), () => bring(dropped > 0), {kind: dropped ? 'danger' : 'primary', 'data-key': 'import'})));
  }

  return {element: h('section', {class: 'card'}, h('h2', null, t('import.title')), h('p', null, t('import.what')),
    field(t('import.file'), file), review)};
}

function finding(one) {
  if (typeof one === 'string') return h('li', null, icon('warning'), ' ', one);
  const texts = one.findings ? one.findings.map((each) => each.text ?? each) : [one.text];
  const name = one.description ? `“${one.description}”: ` : one.position ? `${t('import.position', {n: one.position})}: ` : '';
  return h('li', null, icon('warning'), ' ', name, texts.join('; '));
}
