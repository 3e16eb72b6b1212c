// Bundles the page; with --test bundles and runs its unit tests.
//   IOHOST_WEB_OUT     output folder (default: build/)
//   IOHOST_WEB_DEBUG   when set: readable code with source maps
import { spawnSync } from "node:child_process";
import { cpSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { build } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const outputFolder = process.env.IOHOST_WEB_OUT ?? join(here, "build");
const debug = Boolean(process.env.IOHOST_WEB_DEBUG);

async function buildPage() {
  rmSync(outputFolder, { recursive: true, force: true });
  mkdirSync(outputFolder, { recursive: true });
  await build({
    absWorkingDir: here,
    entryPoints: { page: "src/main.tsx" },
    outdir: outputFolder,
    bundle: true,
    format: "esm",
    // What a panel alone needs is loaded with it.
    splitting: true,
    chunkNames: "[name]-[hash]",
    target: ["es2022"],
    jsx: "automatic",
    jsxImportSource: "preact",
    // The graph's library is written for React; Preact does what it needs.
    alias: { react: "preact/compat", "react-dom": "preact/compat", "react/jsx-runtime": "preact/jsx-runtime" },
    // The node types' icons are files of their own, so that the page needs no data: addresses.
    loader: { ".svg": "file" },
    assetNames: "icons/[name]",
    minify: !debug,
    sourcemap: debug,
    logLevel: "warning",
  });
  cpSync(join(here, "index.html"), join(outputFolder, "index.html"));
  // The server sends these to browsers that take them so.
  for (const name of readdirSync(outputFolder).filter((name) => /\.(html|js|css)$/.test(name))) {
    writeFileSync(join(outputFolder, `${name}.gz`), gzipSync(readFileSync(join(outputFolder, name)), { level: 9 }));
  }
}

async function runTests() {
  const testFolder = join(outputFolder, "test");
  rmSync(testFolder, { recursive: true, force: true });
  const names = readdirSync(join(here, "test")).filter((name) => name.endsWith(".test.ts"));
  await build({
    absWorkingDir: here,
    entryPoints: names.map((name) => `test/${name}`),
    outdir: testFolder,
    outExtension: { ".js": ".mjs" },
    bundle: true,
    platform: "node",
    format: "esm",
    target: ["node18"],
    loader: { ".svg": "file" },
    assetNames: "icons/[name]",
    logLevel: "warning",
  });
  const files = names.map((name) => join(testFolder, name.replace(/\.ts$/, ".mjs")));
  return spawnSync(process.execPath, ["--test", ...files], { stdio: "inherit" }).status ?? 1;
}

if (process.argv.includes("--test")) {
  process.exitCode = await runTests();
} else {
  await buildPage();
}
