// The schedule as files: the present one, and those that were put aside.

import * as api from '../api.js';
import {isDay} from '../dates.js';
import {button, card, h, replace} from '../dom.js';
import {house} from '../house.js';
import {dateText, numberText, t} from '../locale.js';
import {confirmed, failed, notice} from '../notices.js';
import {momentText} from '../sheet.js';

/** Lets the browser keep a text as a file. */
function download(text, name, type = 'application/xml') {
  const url = URL.createObjectURL(new Blob([text], {type}));
  h('a', {href: url, download: name}).click();
  setTimeout(() => URL.revokeObjectURL(url), 10000);
}

/** "Ada-s-house-2026-11-21.xml" */
function fileName(suffix) {
  const name = house.name().replace(/[^\p{L}\p{N}]+/gu, '-');
  return `${name.replace(/^-|-$/g, '') || 'schedule'}-${suffix}.xml`;
}

/** Why a schedule was put aside, in the page's words where the controller's are known. */
function reasonText(reason) {
  const [, actor] = /^asked for by (.+)$/.exec(reason) ?? [];
  if (actor) return actor === 'local' ? t('backup.byHand') : t('backup.byHandOf', {actor});
  const [, day] = /^before the changes of (\d{4}-\d\d-\d\d)$/.exec(reason) ?? [];
  if (isDay(day)) return t('backup.ofDay', {date: dateText(day)});
  return reason === 'replaced by an import' ? t('backup.import') : reason;
}

export function exportCard() {
  return {
    element: card(
      t('project.export'),
      h('p', null, t('project.exportText')),
      button(
        t('project.exportDo'),
        async () => {
          try {
            const response = await api.send('GET', '/project/export');
            download(await response.text(), fileName(house.date()));
          } catch (error) {
            failed(error);
          }
        },
        {'data-key': 'export'},
      ),
    ),
  };
}

export function backupCard() {
  const list = h('ul', {class: 'backups'});
  const restore = async (backup) => {
    const text = t('backup.text', {when: momentText(backup.saved)});
    if (!(await confirmed(t('backup.title'), text, t('backup.restore')))) return;
    await api.post(`/project/backups/${backup.number}/restore`);
    notice(t('backup.restored'));
    await read();
  };
  const save = async (backup) => {
    const response = await api.send('GET', `/project/backups/${backup.number}`);
    download(await response.text(), fileName(`backup-${backup.saved.slice(0, 10)}`));
  };
  const row = (backup) =>
    h(
      'li',
      null,
      h(
        'span',
        null,
        momentText(backup.saved),
        h(
          'small',
          null,
          [reasonText(backup.reason), t('backup.size', {n: numberText(backup.bytes / 1000, 1)})]
            .filter(Boolean)
            .join(', '),
        ),
      ),
      h(
        'span',
        {class: 'row'},
        button(t('backup.download'), () => save(backup).catch(failed), {kind: 'small'}),
        button(t('backup.restore'), () => restore(backup).catch(failed), {
          'kind': 'small',
          'data-key': `restore-${backup.number}`,
        }),
      ),
    );

  async function read() {
    try {
      const {backups} = await api.get('/project/backups');
      replace(
        list,
        backups.map(row),
        backups.length === 0 && h('li', {class: 'empty'}, t('backup.none')),
      );
    } catch (error) {
      failed(error);
    }
  }
  read();
  const element = card(
    t('backup.card'),
    h('p', null, t('backup.what')),
    button(
      t('backup.now'),
      async () => {
        try {
          await api.post('/project/backups');
          notice(t('backup.done'));
          await read();
        } catch (error) {
          failed(error);
        }
      },
      {'data-key': 'backup'},
    ),
    list,
  );
  return {element, read};
}
