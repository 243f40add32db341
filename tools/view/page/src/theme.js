// Light or dark: as the system says, or as chosen here.
const choices = ['system', 'light', 'dark'];
const signs = {system: '◐', light: '☀', dark: '☾'};

export class Theme {
  constructor(button, changed) {
    this.button = button;
    this.changed = changed;
    this.system = matchMedia('(prefers-color-scheme: dark)');
    this.choice = choices.includes(this.kept()) ? this.kept() : 'system';
    this.system.addEventListener('change', () => this.apply());
    button.addEventListener('click', () => {
      this.choice = choices[(choices.indexOf(this.choice) + 1) % choices.length];
      try {
        localStorage.setItem('theme', this.choice);
      } catch { /* it is forgotten */ }
      this.apply();
    });
  }

  kept() {
    try {
      return localStorage.getItem('theme');
    } catch {
      return null;
    }
  }

  apply() {
    const dark = this.choice === 'system' ? this.system.matches : this.choice === 'dark';
    document.documentElement.dataset.shade = dark ? 'dark' : 'light';
    this.button.textContent = signs[this.choice];
    this.button.setAttribute('aria-label', `Colours: ${this.choice}`);
    this.changed();
  }
}
