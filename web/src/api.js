// Requests to the controller. Every failure is an ApiError that can be shown as it is.

import {t} from './locale.js';

const ROOT = 'api/v1';
const TOKEN_KEY = 'vexalink-token';

export class ApiError extends Error {
  /** `status` 0: the controller did not answer. */
  constructor(status, problem) {
    super(problem.detail ?? problem.title ?? String(status));
    this.status = status;
    this.kind = (problem.type ?? '').replace('urn:vexalink:problem:', '');
    /** [{pointer, detail}] */
    this.errors = problem.errors ?? [];
  }
}

export const token = () => sessionStorage.getItem(TOKEN_KEY);

export function setToken(text) {
  if (text) sessionStorage.setItem(TOKEN_KEY, text);
  else sessionStorage.removeItem(TOKEN_KEY);
}

let askForToken = async () => null;
let asking = null;
/** `ask` is called when a token is missing or wrong; it answers with one, or null. */
export const onUnauthorized = (ask) => {
  askForToken = ask;
};

function newToken() {
  asking ??= askForToken().finally(() => {
    asking = null;
  });
  return asking;
}

export function authorization() {
  return token() ? {Authorization: `Bearer ${token()}`} : {};
}

/** A problem's body where there is one; else what the status says. */
async function problemOf(response) {
  const text = await response.text().catch(() => '');
  try {
    const problem = JSON.parse(text);
    if (problem && typeof problem === 'object') return problem;
  } catch {
    // No JSON: a proxy in between, say.
  }
  return {detail: t('error.status', {status: response.status})};
}

async function ask(method, path, {body, type, match, signal, keepalive} = {}) {
  const headers = authorization();
  if (body !== undefined) headers['Content-Type'] = type ?? 'application/json';
  if (match) headers['If-Match'] = match;
  const payload = body === undefined || type ? body : JSON.stringify(body);
  try {
    return await fetch(`${ROOT}${path}`, {method, headers, body: payload, signal, keepalive});
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new ApiError(0, {detail: t('error.offline')});
  }
}

/** The response of a request that was granted. Asks for a token where one is wanted. */
export async function send(method, path, options = {}) {
  const used = token();
  const response = await ask(method, path, options);
  if (response.ok) return response;
  const problem = await problemOf(response);
  if (response.status === 401) {
    // Another request may have been given a token meanwhile.
    if (token() !== used || (await newToken())) return send(method, path, options);
  }
  if (response.status === 403) problem.detail = t('error.forbidden', {why: problem.detail});
  throw new ApiError(response.status, problem);
}

async function json(response) {
  return response.status === 204 ? null : response.json();
}

export const get = async (path, options) => json(await send('GET', path, options));
export const post = async (path, body, options) =>
  json(await send('POST', path, {body, ...options}));
export const put = async (path, body, options) => json(await send('PUT', path, {body, ...options}));
export const patch = async (path, body, options) =>
  json(await send('PATCH', path, {body, ...options}));
export const remove = async (path, options) => json(await send('DELETE', path, options));

/** What a resource is, and its version for If-Match. */
export async function getVersioned(path) {
  const response = await send('GET', path);
  return {value: await response.json(), tag: response.headers.get('ETag')};
}

/** "?from=...&to=..." of what is given. */
export function query(values) {
  const pairs = Object.entries(values).flatMap(([name, value]) =>
    (Array.isArray(value) ? value : [value])
      .filter((one) => one !== undefined && one !== null && one !== '')
      .map((one) => [name, one]),
  );
  return pairs.length ? `?${new URLSearchParams(pairs)}` : '';
}

/** Every occurrence between two days, both included; asked again where an answer was cut short. */
export async function occurrences(from, to, {event, signal} = {}) {
  const LIMIT = 10000;
  const all = [];
  let begin = from;
  for (;;) {
    const answer = await get(`/occurrences${query({from: begin, to, event, limit: LIMIT})}`, {
      signal,
    });
    const last = answer.occurrences.at(-1)?.date;
    if (!answer.truncated || !last || last === begin) return all.concat(answer.occurrences);
    // The day at which it was cut comes again, as a whole.
    all.push(...answer.occurrences.filter(({date}) => date < last));
    begin = last;
  }
}
