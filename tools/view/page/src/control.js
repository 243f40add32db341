// The stop. It is offered when the view was started with it, and works for who knows the token.
import {element} from './dom.js';

export class Control {
  constructor(form, say) {
    this.form = form;
    this.say = say;
    this.token = '';
    this.field = element('input', {type: 'password', placeholder: 'token', autocomplete: 'off', size: 12});
    this.buttons = [];
    form.append(element('label', {}, 'To stop arms, enter the token: ', this.field), element('button', {}, 'Enter'));
    form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.enter(this.field.value.trim());
    });
    document.addEventListener('keydown', (event) => {
      if (event.key === 'Escape' && this.token) this.buttons.forEach(({number}) => this.stop(number));
    });
  }

  // Offers a stop for each arm.
  open(cards) {
    this.buttons = cards.map(({number, tools}) => {
      const button = element('button.stop', {type: 'button', title: 'Stop this arm (Escape stops all)', disabled: true,
                                             onclick: () => this.stop(number)}, 'Stop');
      tools.replaceChildren(button);
      return {number, button};
    });
    this.form.hidden = false;
    const given = new URLSearchParams(location.hash.slice(1)).get('token');
    if (given) this.hide();
    this.enter(given ?? this.kept());
  }

  // Takes the token out of the address.
  hide() {
    const rest = new URLSearchParams(location.hash.slice(1));
    rest.delete('token');
    history.replaceState(null, '', `${location.pathname}#${rest}`);
  }

  kept() {
    try {
      return sessionStorage.getItem('token') ?? '';
    } catch {
      return '';
    }
  }

  async enter(token) {
    if (!token) return;
    const answer = await this.post('token', token);
    if (!answer.ok) {
      this.say(answer.text);
      return;
    }
    this.token = token;
    try {
      sessionStorage.setItem('token', token);
    } catch { /* it is asked for again */ }
    this.say('');
    this.form.hidden = true;
    for (const {button} of this.buttons) button.disabled = false;
  }

  // A view that was started again has another token.
  forget() {
    this.token = '';
    this.form.hidden = false;
    for (const {button} of this.buttons) button.disabled = true;
  }

  async stop(number) {
    const answer = await this.post(`stop?arm=${number}`, this.token);
    this.say(answer.ok ? '' : `The stop did not reach the arm: ${answer.text}`);
    if (answer.refused) this.forget();
  }

  async post(path, token) {
    try {
      const answer = await fetch(path, {method: 'POST', headers: {'X-Token': token}});
      return {...await answer.json(), refused: answer.status === 403};
    } catch {
      return {ok: false, text: 'the view does not answer.'};
    }
  }
}
