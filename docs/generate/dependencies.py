"""Notices of third parties and a bill of materials (SPDX 2.3), from docs/dependencies.json.

That list has the libraries that the programs load. Those that only tests and benchmarks use are not distributed.
"""
import json


def dependencies(root):
    return json.loads((root / "docs/dependencies.json").read_text(encoding="utf-8"))


def notices(root):
    lines = ["# Third-party libraries", "", "Corvanta loads these libraries of the system. None of them is a part of its packages.", "",
             "| library | used for | licence | copyright |", "|---|---|---|---|"]
    lines += [f"| {entry['name']} | {entry['use']} | {entry['license']} | {entry['copyright']} |" for entry in dependencies(root)]
    return "\n".join(lines) + "\n"


def package(name, license_name, copyright_text, version=None):
    found = {"SPDXID": f"SPDXRef-{name.replace(' ', '-').replace('+', 'p')}", "name": name, "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
             "licenseConcluded": "NOASSERTION", "licenseDeclared": license_name, "copyrightText": copyright_text}
    return found | ({"versionInfo": version} if version else {})


def bill_of_materials(root, version):
    """The time and the namespace are fixed, so that equal sources give equal bytes."""
    corvanta = package("Corvanta", "NOASSERTION", "2026 the maintainers of Corvanta. All rights reserved.", version)
    libraries = [package(entry["name"], entry["license"], entry["copyright"]) for entry in dependencies(root)]
    relations = [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES", "relatedSpdxElement": corvanta["SPDXID"]}]
    relations += [{"spdxElementId": corvanta["SPDXID"], "relationshipType": "DYNAMIC_LINK", "relatedSpdxElement": library["SPDXID"]} for library in libraries]
    document = {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": f"corvanta-{version}",
                "documentNamespace": f"urn:corvanta:spdx:{version}", "creationInfo": {"created": "2026-01-01T00:00:00Z", "creators": ["Tool: docs/generate/generate.py"]},
                "packages": [corvanta, *libraries], "relationships": relations}
    return json.dumps(document, indent=1) + "\n"
