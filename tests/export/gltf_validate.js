// node gltf_validate.js FILE: Khronos's validator. Prints "FILE errors E warnings W
// infos I", then every error and warning; exits 1 on any.
'use strict';
const fs = require('fs');
const path = require('path');
const validator = require('gltf-validator');

const file = process.argv[2];
validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
  uri: file,
  maxIssues: 50,
  writeTimestamp: false,
  // A .gltf's buffer lives in a file beside it.
  externalResourceFunction: (uri) =>
    fs.promises.readFile(path.join(path.dirname(file), decodeURIComponent(uri))).then((b) => new Uint8Array(b)),
}).then((report) => {
  const n = report.issues;
  console.log(`${file} errors ${n.numErrors} warnings ${n.numWarnings} infos ${n.numInfos}`);
  for (const m of n.messages) {
    if (m.severity <= 1) console.log(`  ${m.severity ? 'warning' : 'error'} ${m.code} ${m.pointer || ''}: ${m.message}`);
  }
  process.exit(n.numErrors > 0 || n.numWarnings > 0 ? 1 : 0);
}, (e) => {
  console.error(`validator failed: ${e}`);
  process.exit(1);
});
