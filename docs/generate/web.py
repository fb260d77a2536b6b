"""The documentation as HTML: the pages of the project and those of the reference, with links between them.

python3-markdown converts each page. The pages need no script and no network, and stay readable in simple viewers.
"""
import html
import os
import pathlib
import re
import shutil

STYLE = """body{font:16px/1.5 sans-serif;max-width:60em;margin:1em auto;padding:0 1em;color:#222;background:#fff}
code,pre{font:14px/1.4 monospace;background:#f4f4f4}pre{padding:.6em;overflow-x:auto;border:1px solid #ddd}
table{border-collapse:collapse}td,th{border:1px solid #ccc;padding:.2em .5em;text-align:left;vertical-align:top}
nav{border-bottom:1px solid #ccc;padding-bottom:.4em}h3,h4{border-top:1px solid #eee;padding-top:.5em}dt{margin-top:.6em}img{max-width:100%}
@media(prefers-color-scheme:dark){body{color:#ddd;background:#1e1e1e}code,pre{background:#2a2a2a}pre,td,th,nav{border-color:#444}a{color:#8ab4f8}}"""
NAVIGATION = [("Start", "index.html"), ("Cookbook", "cookbook/index.html"), ("Commands", "reference/commands.html"), ("Actions", "reference/actions.html"),
              ("Formats", "reference/formats.html"), ("Graph file", "reference/graph.html"), ("Messages", "reference/messages.html")]
LINK = re.compile(r'(href|src)="([^"#:]+)(#[^"]*)?"')


def repository_pages(root):
    """Path in the HTML tree and Markdown file of each page of the project. The tree begins at docs."""
    files = [root / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md", "examples/README.md")]
    files += sorted((root / "docs").rglob("*.md"))
    return {tree_path(file.relative_to(root).as_posix()): file for file in files if file.exists()}


def tree_path(name):
    """Where a file of the project is in the HTML tree; a page has the suffix .md here."""
    name = {"README.md": "about.md", "examples/README.md": "examples.md"}.get(name, name)
    return name.removeprefix("docs/").replace("cookbook/README.md", "cookbook/index.md")


def in_repository(path):
    """The inverse of tree_path() for the folder of a page: links of a page are relative to it."""
    inverse = {"about.md": "README.md", "examples.md": "examples/README.md", "CONTRIBUTING.md": "CONTRIBUTING.md", "CHANGELOG.md": "CHANGELOG.md",
               "SECURITY.md": "SECURITY.md"}
    return inverse.get(path, "docs/" + path)


class Site:
    def __init__(self, root, folder, generated):
        self.root, self.folder = root, pathlib.Path(folder)
        self.texts = {path: file.read_text(encoding="utf-8") for path, file in repository_pages(root).items()} | generated
        self.files = set()

    def target(self, path, link):
        """The link of page `path` in the HTML tree; None for a file that is not a part of the documentation."""
        name = os.path.normpath(os.path.join(os.path.dirname(in_repository(path)), link))
        inside = tree_path(name)
        if (self.root / name).is_dir():
            inside = next((page for page in (inside + "/index.md", inside + "/README.md", inside + ".md") if page in self.texts), inside)
        if inside in self.texts:
            return inside.removesuffix(".md") + ".html"
        if (self.root / name).is_file() and name.endswith((".png", ".svg")):
            self.files.add((name, inside))
            return inside
        return None

    def link(self, path, found):
        target = self.target(path, html.unescape(found.group(2)))
        if target is None:
            # Sources and folders are not a part of the installed documentation.
            return 'class="source"' if (self.root / os.path.dirname(in_repository(path)) / found.group(2)).exists() else found.group()
        relative = os.path.relpath(target, os.path.dirname(path) or ".")
        return f'{found.group(1)}="{relative}{found.group(3) or ""}"'

    def page(self, path, body):
        depth = "../" * path.count("/")
        title = re.search(r"<h1[^>]*>(.*?)</h1>", body)
        links = " · ".join(f'<a href="{depth}{target}">{name}</a>' for name, target in NAVIGATION)
        return (f'<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>{title.group(1) if title else "Corvanta"}</title>'
                f'<meta name="viewport" content="width=device-width"><link rel="stylesheet" href="{depth}style.css"></head>\n'
                f'<body><nav>{links}</nav>\n{body}\n</body></html>\n')

    def add_lists(self):
        """Lists of the pages of each folder at the end of the first page, and of the cookbook."""
        for title, folder in (("Guides", "guide"), ("Formats", "formats"), ("For developers", ""), ("Decisions", "decisions")):
            self.add_list("index.md", f"## {title}", folder)
        self.add_list("cookbook/index.md", "", "cookbook")

    def add_list(self, page, title, folder):
        paths = [path for path in sorted(self.texts) if os.path.dirname(path) == folder and not path.endswith("index.md")]
        # A link of a page is relative to its place in the repository.
        links = [os.path.relpath(in_repository(path), os.path.dirname(in_repository(page))) for path in paths]
        titles = [self.texts[path].partition("\n")[0].lstrip("# ") for path in paths]
        self.texts[page] += "\n".join(["", title, "", *(f"- [{name}]({link})" for name, link in zip(titles, links)), ""])

    def write(self):
        import markdown  # only here: manual pages and completions do not need it

        self.add_lists()
        converter = markdown.Markdown(extensions=["tables", "fenced_code", "attr_list", "def_list", "toc", "sane_lists"])
        for path, text in self.texts.items():
            body = LINK.sub(lambda found: self.link(path, found), converter.reset().convert(text))
            self.put(path.removesuffix(".md") + ".html", self.page(path, body))
        self.put("style.css", STYLE)
        for name, inside in sorted(self.files):
            (self.folder / inside).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(self.root / name, self.folder / inside)

    def put(self, path, text):
        file = self.folder / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")


def help_pages(catalogue, generated):
    """A page per key that panels pass to the help of the program: all actions with that key."""
    keys = {}
    for action in catalogue.actions:
        if action.get("helpPage"):
            keys.setdefault(action["helpPage"], []).append(generated[f"reference/actions/{action['type']}.md"])
    return {f"reference/actions/{key}.md": "\n".join(texts) for key, texts in keys.items()}
