// Validates glTF files with Khronos's validator. Prints one line per file:
// "FILE errors E warnings W infos I vertices V triangles T", and every error
// and warning; exits 1 when any file has an error or a warning.
// Usage: node gltf_validate.js FILE...
'use strict';
const fs = require('fs');
const path = require('path');
const validator = require('gltf-validator');

async function main(files) {
  let status = 0;
  for (const file of files) {
    const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
      uri: file,
      maxIssues: 50,
      writeTimestamp: false,
      // A .gltf's buffer lives in a file beside it.
      externalResourceFunction: (uri) =>
        fs.promises.readFile(path.join(path.dirname(file), decodeURIComponent(uri))).then((b) => new Uint8Array(b)),
    });
    const n = report.issues;
    console.log(`${file} errors ${n.numErrors} warnings ${n.numWarnings} infos ${n.numInfos} ` +
                `vertices ${report.info.totalVertexCount} triangles ${report.info.totalTriangleCount}`);
    for (const m of n.messages) {
      if (m.severity <= 1) console.log(`  ${m.severity ? 'warning' : 'error'} ${m.code} ${m.pointer || ''}: ${m.message}`);
    }
    if (n.numErrors > 0 || n.numWarnings > 0) status = 1;
  }
  return status;
}

main(process.argv.slice(2)).then((s) => process.exit(s), (e) => {
  console.error(`validator failed: ${e}`);
  process.exit(1);
});
