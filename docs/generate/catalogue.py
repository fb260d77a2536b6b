"""What the program says about itself: commands, options, actions, parameters and file extensions."""
import concurrent.futures
import json
import subprocess


def _json(program, *words):
    return json.loads(subprocess.run([program, *words], check=True, capture_output=True).stdout)


class Catalogue:
    """version; commands (as `help --json` prints them); reads, writes (extensions); actions (as `describe --json` prints them)."""

    def __init__(self, program):
        program_help = _json(program, "help", "--json")
        self.version, self.commands = program_help["version"], program_help["commands"]
        self.reads, self.writes = program_help["reads"], program_help["writes"]
        types = [action["type"] for action in _json(program, "actions", "--json")]
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            self.actions = list(pool.map(lambda name: _json(program, "describe", name, "--json"), types))

    def options(self, command):
        """The options of a command; other lines of its help describe forms of arguments."""
        return [option for group in command["optionGroups"] for option in group["options"] if is_option(option)]

    def parameters_by_extension(self, use):
        """For each extension the parameters of the action that reads or writes such files."""
        result = {}
        for action in self.actions:
            for form in action.get("formats", []):
                if form["use"] == use:
                    for extension in form["extensions"].split():
                        result.setdefault(extension, action["parameters"])
        return result


def is_option(option):
    name = option["names"][0]
    return name.startswith("-") and name != "-"


def argument_kinds(usage):
    """The words in capitals of a usage line: GRAPH, INPUT, OUTPUT, FILE, TYPE."""
    return [word.strip("[]").rstrip(".") for word in usage.split() if word.strip("[].").isupper()]
