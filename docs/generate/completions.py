"""The completions of the command for bash, zsh and fish."""
import re

from catalogue import argument_kinds

# Options that may be given several times say so in their meaning.
REPEATABLE = "(repeatable"
COMPRESSION = ["isal-2", "isal-3"] + [f"zlib-{level}" for level in range(1, 10)]
ENCODINGS = ["UTF-8", "UTF-16LE", "windows-1252", "ISO-8859-1", "ISO-8859-15", "windows-1251", "IBM850", "Shift_JIS", "GB18030"]
COMPRESSED = ["gz", "Z"]
TEMPLATES = ["docx", "pptx", "xlsx"]


def value_words(option, catalogue):
    """The words that a value can be; empty when it is free."""
    name, value = option["names"][-1], option["value"]
    if name == "--compression":
        return COMPRESSION
    if name in ("--encoding", "--system-encoding"):
        return ENCODINGS
    if value == "FORMAT":
        return catalogue.reads if name == "--from" else catalogue.writes
    return [word for word in value.split("|") if word.islower()]


def value_kind(option):
    """words, file, folder, reader, writer, columns, variable or text."""
    name, value = option["names"][-1], option["value"]
    if name in ("--select", "--sort", "--rename", "--where"):
        return "columns"
    if name in ("--reader", "--writer"):
        return name[2:]
    if name == "--set":
        return "variable"
    return {"DIR": "folder", "FILE": "file", "LIST": "file", "OUT": "file"}.get(value, "text")


def argument_extensions(kind, catalogue):
    """The extensions of the files that an argument names; None: it is not a file."""
    reads = catalogue.reads + ["zip", "rar"] + COMPRESSED
    return {"GRAPH": ["graph"], "INPUT": reads, "OUTPUT": catalogue.writes + ["gz"], "FILE": TEMPLATES}.get(kind)


def command_extensions(command, catalogue):
    """The extensions that the files of a command can have."""
    kinds = dict.fromkeys(kind for usage in command["usage"] for kind in argument_kinds(usage))
    lists = [argument_extensions(kind, catalogue) or [] for kind in kinds]
    return list(dict.fromkeys(extension for extensions in lists for extension in extensions))


def parameter_names(catalogue, use):
    """Extensions with equal lists of names share a line."""
    by_names = {}
    for extension, infos in catalogue.parameters_by_extension(use).items():
        names = " ".join(info["name"] + "=" for info in infos if info["type"] != "structure")
        by_names.setdefault(names, []).append(extension)
    return [(extensions, names) for names, extensions in by_names.items()]


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


BASH = r'''# Completion of corvanta for bash. Generated from the options and parameters of the program.

# The extension of the first input, or of the output: "csv" for a.csv.gz.
_corvanta_extension() {
    local name=${1%.gz}
    name=${name%.Z}
    printf '%s' "${name##*.}"
}

# The names of parameters, each with "=", of the action that reads files with this extension.
_corvanta_reader() {
    case $1 in
@READER@
    esac
}

# The same of the action that writes them.
_corvanta_writer() {
    case $1 in
@WRITER@
    esac
}

# Adds the files whose names have one of these extensions, and all folders.
_corvanta_files() {
    local name pattern=$1
    compopt -o filenames 2>/dev/null
    while IFS= read -r name; do
        if [[ -d $name || ${name,,} =~ \.($pattern)$ ]]; then
            COMPREPLY+=("$name")
        fi
    done < <(compgen -f -- "$cur")
}

# Adds the words of a list. A word after "=" replaces only what is after it, as readline does.
_corvanta_words() {
    local word
    while IFS= read -r word; do
        COMPREPLY+=("$word")
    done < <(compgen -W "$1" -- "$cur")
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace 2>/dev/null
    fi
}

# Adds the columns of the first input. Of a list, only what follows the last comma is completed. Names with blanks, commas or quotes are left out.
_corvanta_columns() {
    local before='' names
    [[ $cur == *,* ]] && before=${cur%,*},
    [[ ${cur#"$before"} == -* ]] && before+=-
    [[ -f $first ]] || return 0
    names=$("${words[0]}" schema "$first" --quiet 2>/dev/null | cut -f1 | grep -v '[[:space:],"]')
    while IFS= read -r i; do
        COMPREPLY+=("$i")
    done < <(compgen -P "$before" -W "$names" -- "${cur#"$before"}")
    compopt -o nospace 2>/dev/null
    return 0
}

# The value of the option $1 of the command $command. Returns 1 when it is not an option with a value.
_corvanta_value() {
    local variables
    case $command:$1 in
@VALUES@
    *) return 1 ;;
    esac
}

_corvanta() {
    local cur previous command first='' i
    # Not COMP_WORDS: there "=" and ":" are words of their own.
    local line=${COMP_LINE:0:COMP_POINT}
    local -a words
    read -ra words <<<"$line"
    [[ $line == *[[:space:]] ]] && words+=('')
    cur=${words[-1]} previous=${words[-2]} command=${words[1]}
    COMPREPLY=()
    if ((${#words[@]} <= 2)); then
        _corvanta_words '@COMMANDS@ help --version --help'
        return
    fi
    for ((i = 2; i < ${#words[@]} - 1; i++)); do
        [[ ${words[i]} == *.* && ${words[i]} != -* && -z $first ]] && first=${words[i]}
    done
    local last=$first
    for ((i = 2; i < ${#words[@]} - 1; i++)); do
        [[ ${words[i]} == *.* && ${words[i]} != -* && ${words[i - 1]} != --* ]] && last=${words[i]}
    done
    if [[ $cur == --*=* ]]; then
        previous=${cur%%=*} cur=${cur#*=}
    fi
    _corvanta_value "$previous" && return
    if [[ $cur == -* ]]; then
        case $command in
@OPTIONS@
        esac
        return
    fi
    case $command in
    describe) _corvanta_words '@ACTIONS@' ;;
    help) _corvanta_words '@COMMANDS@' ;;
@FILES@
    esac
}

complete -F _corvanta corvanta
'''


def bash_value(option, catalogue):
    words, kind = value_words(option, catalogue), value_kind(option)
    if words:
        return f"_corvanta_words {quoted(' '.join(words))}"
    if kind == "file":
        return "_corvanta_files '.*'"
    if kind == "folder":
        return "while IFS= read -r i; do COMPREPLY+=(\"$i\"); done < <(compgen -d -- \"$cur\")"
    if kind in ("reader", "writer"):
        name = "$first" if kind == "reader" else "$last"
        return f'_corvanta_words "$(_corvanta_{kind} "$(_corvanta_extension "{name}")")"'
    if kind == "columns":
        return "_corvanta_columns"
    if kind == "variable":
        return ('variables=$(grep -o \'[$]{[A-Za-z_0-9]*}\' "$first" 2>/dev/null | tr -cd \'A-Za-z_0-9\\n\' | sort -u | sed \'s/$/=/\')\n'
                '        _corvanta_words "$variables"')
    return ":"


def bash(catalogue):
    parameters = {use: "\n".join(f"    {'|'.join(extensions)}) echo '{names}' ;;" for extensions, names in parameter_names(catalogue, use))
                  for use in ("read", "write")}
    values, options, files = [], [], []
    for command in catalogue.commands:
        all_options = catalogue.options(command)
        for option in all_options:
            if option["value"]:
                pattern = "|".join(f"{command['name']}:{name}" for name in option["names"])
                values.append(f"    {pattern}) {bash_value(option, catalogue)} ;;")
        names = [name for option in all_options for name in option["names"]] + ["--help"]
        options.append(f"        {command['name']}) _corvanta_words {quoted(' '.join(names))} ;;")
        extensions = command_extensions(command, catalogue)
        if extensions:
            files.append(f"    {command['name']}) _corvanta_files {quoted('|'.join(extension.lower() for extension in extensions))} ;;")
    fields = {"READER": parameters["read"], "WRITER": parameters["write"], "VALUES": "\n".join(values), "OPTIONS": "\n".join(options),
              "FILES": "\n".join(files), "ACTIONS": " ".join(action["type"] for action in catalogue.actions),
              "COMMANDS": " ".join(command["name"] for command in catalogue.commands)}
    return re.sub("@([A-Z]+)@", lambda field: fields[field.group(1)], BASH)


def zsh_text(text):
    return re.sub(r"([\[\]:\\])", r"\\\1", text).replace("'", "'\\''")


def zsh_value(option, catalogue):
    words, kind = value_words(option, catalogue), value_kind(option)
    if words:
        return f"({' '.join(words)})"
    # The blank makes _arguments call the function with these words only.
    return {"file": "_files", "folder": "_files -/", "columns": " _corvanta_columns", "reader": " _corvanta_parameters reader", "writer": " _corvanta_parameters writer"}.get(kind, "")


def zsh_options(command, catalogue):
    for option in catalogue.options(command):
        names, is_repeatable = option["names"], REPEATABLE in option["meaning"]
        value = f":{zsh_text(option['value'])}:{zsh_value(option, catalogue)}" if option["value"] else ""
        star = "*" if is_repeatable else ""
        exclusive = "" if len(names) == 1 else f"({' '.join(names)})"
        for name in names:
            # "=": the value may be in the same word or in the next one.
            suffix = "=" if option["value"] and name.startswith("--") else ""
            yield f"'{exclusive}{star}{name}{suffix}[{zsh_text(option['meaning'])}]{value}'"
    yield "'--help[print the options of the command]'"


def zsh_arguments(command, catalogue):
    if command["name"] == "describe":
        return f"'1:action:({' '.join(action['type'] for action in catalogue.actions)})'"
    extensions = command_extensions(command, catalogue)
    return f"'*:file:_files -g \"*.(#i)({'|'.join(extensions)})(-.)\"'" if extensions else ""


def zsh(catalogue):
    lines = ["#compdef corvanta", "# Completion of corvanta for zsh. Generated from the options and parameters of the program.", "",
             "# The names of parameters of the action that reads the first file, or writes the last one.", "_corvanta_parameters() {",
             "    local -a files names", "    files=(${(M)words:#[^-]*.*})", "    local name=${${files[1]%.gz}%.Z}",
             "    [[ $1 == writer ]] && name=${${files[-1]%.gz}%.Z}", "    case $1:${name##*.} in"]
    for use, role in (("read", "reader"), ("write", "writer")):
        for extensions, names in parameter_names(catalogue, use):
            lines.append(f"    {role}:({'|'.join(extensions)})) names=({names.replace('=', '')}) ;;")
    lines += ["    esac", "    compadd -S= -- $names", "}", "",
              "# The columns of the first file. Of a list, only what follows the last comma is completed.", "_corvanta_columns() {",
              "    local -a files names", "    files=(${(M)words:#[^-]*.*})", "    [[ -f $files[1] ]] || return",
              "    names=(${${(f)\"$(corvanta schema $files[1] --quiet 2>/dev/null)\"}%%$'\\t'*})", "    compset -P '*,'", "    compset -P '-'",
              "    compadd -S '' -- $names", "}", "", "_corvanta() {", "    local -a commands=("]
    lines += [f"        '{command['name']}:{zsh_text(command['summary'])}'" for command in catalogue.commands]
    lines += ["        'help:print the help of a command'", "    )", "    if ((CURRENT == 2)); then", "        _describe command commands",
              "        return", "    fi", "    local command=$words[2]", "    shift words", "    ((CURRENT--))", "    case $command in"]
    for command in catalogue.commands:
        arguments = [*zsh_options(command, catalogue), zsh_arguments(command, catalogue)]
        lines.append(f"    {command['name']})\n        _arguments -S \\\n            " +
                     " \\\n            ".join(argument for argument in arguments if argument) + "\n        ;;")
    names = " ".join(command["name"] for command in catalogue.commands)
    lines += [f"    help) _arguments '1:command:({names})' ;;", "    esac", "}", "", '_corvanta "$@"', ""]
    return "\n".join(lines)


def fish_value(option, catalogue):
    words, kind = value_words(option, catalogue), value_kind(option)
    if words:
        return f" -x -a {quoted(' '.join(words))}"
    return {"file": " -r -F", "folder": " -x -a '(__fish_complete_directories)'", "columns": " -x -a '(__corvanta_columns)'",
            "reader": " -x -a '(__corvanta_parameters reader)'",
            "writer": " -x -a '(__corvanta_parameters writer)'"}.get(kind, " -x" if option["value"] else "")


def fish_options(command, catalogue):
    for option in catalogue.options(command):
        names = "".join(f" -l {name[2:]}" if name.startswith("--") else f" -s {name[1:]}" for name in option["names"])
        meaning = quoted(option["meaning"].replace("\\", "\\\\"))
        yield f"complete -c corvanta -n '__fish_seen_subcommand_from {command['name']}'{names}{fish_value(option, catalogue)} -d {meaning}"


def fish_files(command, catalogue):
    condition = f"complete -c corvanta -n '__fish_seen_subcommand_from {command['name']}'"
    if command["name"] == "describe":
        for action in catalogue.actions:
            yield f"{condition} -a {action['type']} -d {quoted(action['description'])}"
    extensions = command_extensions(command, catalogue)
    if extensions:
        yield f"{condition} -k -a '(__fish_complete_suffix {' '.join('.' + extension for extension in extensions)})'"


def fish(catalogue):
    names = [command["name"] for command in catalogue.commands]
    lines = ["# Completion of corvanta for fish. Generated from the options and parameters of the program.", "",
             "# The names of parameters of the action that reads the first file, or writes the last one.", "function __corvanta_parameters",
             "    set -l files (commandline -opc | string match -r '^[^-].*\\.\\w+$' | string replace -r '\\.(gz|Z)$' '')",
             "    set -q files[1]; or return", "    set -l name $files[1]", "    test $argv[1] = writer; and set name $files[-1]",
             "    switch $argv[1]:(string replace -r '.*\\.' '' $name)"]
    for use, role in (("read", "reader"), ("write", "writer")):
        for extensions, parameters in parameter_names(catalogue, use):
            lines += [f"        case {' '.join(role + ':' + extension for extension in extensions)}", f"            printf '%s\\n' {parameters}"]
    lines += ["    end", "end", "", "# The columns of the first file. Of a list, only what follows the last comma is completed.", "function __corvanta_columns",
              "    set -l files (commandline -opc | string match -r '^[^-].*\\.\\w+$')", '    test -f "$files[1]"; or return',
              "    set -l before (commandline -ct | string match -r '^.*,')",
              "    corvanta schema $files[1] --quiet 2>/dev/null | string replace -r '\\t.*' '' | string replace -r '^' \"$before\"", "end", "",
              "complete -c corvanta -f",
              f"set -l commands {' '.join(names)} help"]
    for command in catalogue.commands:
        lines.append(f"complete -c corvanta -n \"not __fish_seen_subcommand_from $commands\" -a {command['name']} -d {quoted(command['summary'])}")
    lines += ['complete -c corvanta -n "not __fish_seen_subcommand_from $commands" -a help -d \'print the help of a command\'',
              f"complete -c corvanta -n '__fish_seen_subcommand_from help' -a '{' '.join(names)}'",
              'complete -c corvanta -n "not __fish_seen_subcommand_from $commands" -l version -d \'print the version\'']
    for command in catalogue.commands:
        lines += [*fish_options(command, catalogue), *fish_files(command, catalogue)]
    return "\n".join(lines) + "\n"
