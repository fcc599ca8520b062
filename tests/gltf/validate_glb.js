// Validates each .glb named on the command line with the Khronos validator. Prints one line for
// each error and warning ("file: CODE pointer message") and exits 1 if there is any, 2 when the
// validator can't run.
'use strict';
const fs = require('fs');
const path = require('path');

let validator;
try {
  validator = require(path.join(__dirname, 'node_modules', 'gltf-validator'));
} catch (e) {
  console.log('gltf-validator is not installed: run scripts/setup');
  process.exit(2);
}

async function main(files) {
  let issues = 0;
  for (const file of files) {
    const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {maxIssues: 0});
    for (const message of report.issues.messages) {
      // Severity 0 is an error, 1 a warning; infos and hints don't count.
      if (message.severity > 1) continue;
      ++issues;
      console.log(`${file}: ${message.code} ${message.pointer || ''} ${message.message}`);
    }
  }
  return issues ? 1 : 0;
}

main(process.argv.slice(2)).then((code) => process.exit(code), (error) => {
  console.log(String(error));
  process.exit(2);
});
