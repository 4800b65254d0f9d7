// Puts the package together, and the page into one file, which needs nothing else and so opens from a disk:
// node build.mjs FOLDER_OF_THE_MODULE PACKAGE VERSION
import { copyFileSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';

const [moduleFolder, target, version] = process.argv.slice(2);
const here = dirname(fileURLToPath(import.meta.url));
const source = (name) => readFileSync(join(here, name), 'utf8');

mkdirSync(target, { recursive: true });
for (const name of ['README.md', 'index.d.ts', 'torva35.js']) copyFileSync(join(here, name), join(target, name));
copyFileSync(join(moduleFolder, 'torva35-module.js'), join(target, 'torva35-module.js'));
copyFileSync(join(moduleFolder, 'torva35-module.wasm'), join(target, 'torva35.wasm'));
writeFileSync(join(target, 'package.json'), JSON.stringify({ ...JSON.parse(source('package.json')), version }, null, 2) + '\n');

/** A module as a function that gives what it exports; its imports are names that are there already. */
function inlined(text, exported) {
  const body = text.replace(/^import .*;$/gm, '').replace(/^export default .*;$/gm, '').replace(/^export /gm, '');
  return `const { ${exported.join(', ')} } = (() => {\n${body}\nreturn { ${exported.join(', ')} };\n})();\n`;
}

const glue = readFileSync(join(moduleFolder, 'torva35-module.js'), 'utf8');
const wasm = gzipSync(readFileSync(join(moduleFolder, 'torva35-module.wasm')), { level: 9 }).toString('base64');
const script =
  inlined(glue.replace(/^var Module\b/m, 'const createModule').replace(/export default Module;?/, ''), ['createModule']) +
  `async function embeddedModule() {
  const packed = Uint8Array.from(atob('${wasm}'), (byte) => byte.charCodeAt(0));
  return new Response(new Blob([packed]).stream().pipeThrough(new DecompressionStream('gzip'))).arrayBuffer();
}\n` +
  inlined(source('torva35.js').replace('await moduleFile()', 'await embeddedModule()').replace(/import\.meta\.url/g, "''"),
    ['init', 'load']) +
  inlined(source('words.js'), ['words']) + inlined(source('zip.js'), ['zip']) +
  source('app.js').replace(/^import .*;$/gm, '');

const page = source('page.html')
  .replace('/*style.css*/', () => source('style.css'))
  .replace('/*script*/', () => script.replaceAll('</script', '<\\/script'));
writeFileSync(join(target, 'index.html'), page);
