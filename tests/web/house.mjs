// The controller as its users run it, on a project of its own that is gone afterwards.

import {spawn} from 'node:child_process';
import {mkdtemp, rm} from 'node:fs/promises';
import {tmpdir} from 'node:os';
import {join} from 'node:path';

const START_MS = 60000;
export const PROGRAM = process.env.VEXALINK_PROGRAM ?? 'build/release/bin/vexalink';

export class House {
  #process;
  #folder;
  log = '';

  /**
   * Starts one; `options.arguments` go to `serve`, `zone` is its time zone, `folder` where its
   * project is or comes, `listen` where it listens.
   */
  static async start(options = {}) {
    const house = new House();
    house.#folder = options.folder ?? (await mkdtemp(join(tmpdir(), 'vexalink-web-')));
    house.options = options;
    await house.#run(options.listen ?? '127.0.0.1:0');
    return house;
  }

  /** The project's file. */
  get file() {
    return join(this.#folder, 'house.db');
  }

  async #run(listen) {
    const {
      zone = 'Europe/Berlin',
      place = ['--latitude', '52.52', '--longitude', '13.405'],
      arguments: more = [],
    } = this.options;
    this.log = '';
    this.#process = spawn(
      PROGRAM,
      ['serve', '--project', this.file, '--listen', listen, ...place, ...more],
      {
        stdio: ['ignore', 'ignore', 'pipe'],
        env: {
          ...process.env,
          TZ: zone,
          HOME: this.#folder,
          XDG_CONFIG_HOME: '',
          XDG_DATA_HOME: '',
          XDG_STATE_HOME: '',
        },
      },
    );
    this.#process.stderr.setEncoding('utf8');
    this.#process.stderr.on('data', (text) => {
      this.log += text;
    });
    const ended = new Promise((resolve) => this.#process.once('exit', resolve));
    const begun = Date.now();
    for (;;) {
      const address = /\bapi (http:\/\/\S+)/.exec(this.log);
      if (address) {
        // From everywhere means also from here.
        this.url = address[1].replace('0.0.0.0', '127.0.0.1').replace(/\/?$/, '/');
        break;
      }
      const over = await Promise.race([
        ended.then(() => true),
        new Promise((resolve) => setTimeout(resolve, 20, false)),
      ]);
      if (over || Date.now() - begun > START_MS)
        throw new Error(`the controller did not start:\n${this.log}`);
    }
    this.ended = ended;
  }

  /** A request past the page, as another client makes it. */
  async ask(method, path, body) {
    const response = await fetch(`${this.url}api/v1${path}`, {
      method,
      headers: body === undefined ? {} : {'Content-Type': 'application/json'},
      body: body === undefined ? undefined : JSON.stringify(body),
    });
    const text = await response.text();
    if (!response.ok) throw new Error(`${method} ${path}: ${response.status} ${text}`);
    return text ? JSON.parse(text) : null;
  }

  async eventNamed(description) {
    const {events} = await this.ask('GET', '/events');
    return events.find((event) => event.description === description);
  }

  /** Ends it and starts it again where it was. */
  async restart() {
    const listen = new URL(this.url).host;
    await this.halt();
    await this.#run(listen);
  }

  async halt() {
    this.#process.kill('SIGTERM');
    await this.ended;
  }

  async stop() {
    await this.halt();
    await rm(this.#folder, {recursive: true, force: true});
  }
}
