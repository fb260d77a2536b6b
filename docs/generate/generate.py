#!/usr/bin/python3
"""Makes manual pages, completions and the HTML documentation: generate.py CORVANTA SHARE

CORVANTA is the built program, which says what its commands and actions are. SHARE is the folder "share" of an installation:

    man/man1, man/man5, man/man7
    bash-completion/completions/corvanta, zsh/site-functions/_corvanta, fish/vendor_completions.d/corvanta.fish
    doc/corvanta/html/index.html, and THIRD-PARTY.md, corvanta.spdx.json and SECURITY.md in doc/corvanta

Without the Python package "markdown" there is no HTML, and a line says so.
"""
import importlib.util
import pathlib
import shutil
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True

import catalogue as program  # noqa: E402
import completions  # noqa: E402
import dependencies  # noqa: E402
import manual  # noqa: E402
import reference  # noqa: E402
import web  # noqa: E402


def write(file, text):
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text(text, encoding="utf-8")


def main(corvanta, share):
    share = pathlib.Path(share)
    catalogue = program.Catalogue(corvanta)
    pages = reference.pages(catalogue, ROOT)
    # No page of an action that has another name now.
    for folder in ("man", "doc/corvanta/html"):
        shutil.rmtree(share / folder, ignore_errors=True)
    written = [(ROOT / f"docs/reference/{name}.md").read_text(encoding="utf-8") for name in ("graph", "studio")]
    for name, text in manual.pages(catalogue, pages, *written).items():
        write(share / "man" / name, text)
    write(share / "bash-completion/completions/corvanta", completions.bash(catalogue))
    write(share / "zsh/site-functions/_corvanta", completions.zsh(catalogue))
    write(share / "fish/vendor_completions.d/corvanta.fish", completions.fish(catalogue))
    write(share / "doc/corvanta/THIRD-PARTY.md", dependencies.notices(ROOT))
    write(share / "doc/corvanta/corvanta.spdx.json", dependencies.bill_of_materials(ROOT, catalogue.version))
    shutil.copyfile(ROOT / "SECURITY.md", share / "doc/corvanta/SECURITY.md")
    if importlib.util.find_spec("markdown") is None:
        print("docs: the Python package 'markdown' (python3-markdown) is missing: no HTML is made")
        return
    pages |= web.help_pages(catalogue, pages)
    web.Site(ROOT, share / "doc/corvanta/html", pages).write()


if __name__ == "__main__":
    main(*sys.argv[1:])
