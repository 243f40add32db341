// Bundles the page: build.mjs SOURCE PACKAGES OUT. PACKAGES is where npm has installed.
import {createHash} from 'node:crypto';
import {mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {gzipSync} from 'node:zlib';

const [source, packages, out] = process.argv.slice(2);
const {build} = createRequire(join(packages, 'package.json'))('esbuild');

const bundle = await build({
  entryPoints: {app: join(source, 'src/main.js')},
  bundle: true,
  minify: true,
  format: 'iife',
  target: ['chrome100', 'firefox100', 'safari15'],
  nodePaths: [join(packages, 'node_modules')],
  legalComments: 'none',
  metafile: true,
  write: false,
  outdir: out,
});

// The licence of every package of which something is in the bundle.
const names = new Set(Object.keys(bundle.metafile.inputs).flatMap((file) => file.match(/node_modules\/([^/]+)/)?.[1] ?? []));
const licences = [...names].sort().map((name) => {
  const folder = join(packages, 'node_modules', name);
  const {version} = JSON.parse(readFileSync(join(folder, 'package.json')));
  return `${name} ${version}\n\n${readFileSync(join(folder, 'LICENSE'), 'utf8').trim()}\n`;
});

const files = {
  'index.html': readFileSync(join(source, 'src/index.html')),
  'licences.txt': `This page contains these packages.\n\n${licences.join('\n\n')}`,
};
for (const {path, contents} of bundle.outputFiles) files[path.endsWith('.css') ? 'app.css' : 'app.js'] = contents;
mkdirSync(out, {recursive: true});
const hash = createHash('sha256');
for (const [name, content] of Object.entries(files)) {
  writeFileSync(join(out, `${name}.gz`), gzipSync(content, {level: 9}));
  hash.update(content);
}
// A compiler cache sees by this header that the page has changed.
writeFileSync(join(out, 'page_stamp.h'), `// ${hash.digest('hex')}\n`);
