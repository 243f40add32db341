// element('p.note', {title: 'x'}, 'text', child): a small way to build the page.
export function element(name, properties, ...children) {
  const [tag, ...classes] = name.split('.');
  const made = document.createElement(tag || 'div');
  if (classes.length) made.className = classes.join(' ');
  for (const [key, value] of Object.entries(properties ?? {})) {
    if (key === 'style') made.style.cssText = value;
    else made[key] = value;
  }
  made.append(...children.filter((child) => child !== null && child !== undefined));
  return made;
}

// Writes a text only when it differs: what does not change costs nothing.
export function write(node, text) {
  if (node.textContent !== text) node.textContent = text;
}
