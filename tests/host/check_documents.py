"""Checks JSON documents of the command against docs/schemas, with python3-jsonschema.

    check_documents.py SCHEMAS NAME=PATH...            each document is valid
    check_documents.py --strict SCHEMAS NAME=PATH...   and no key can be added, taken away or renamed

NAME is that of the schema: NAME.schema.json. Prints what is wrong; exit status 1 if anything is.
"""

import copy
import json
import pathlib
import sys

import jsonschema


def refuse_constant(word):
    raise ValueError(f"{word} is no JSON")


def load(path):
    return json.loads(path.read_bytes(), parse_constant=refuse_constant)


def list_objects(node, path=()):
    """The paths of all objects in a document, of those in one array the first."""
    if isinstance(node, dict):
        yield path
        for key, value in node.items():
            yield from list_objects(value, path + (key,))
    elif isinstance(node, list) and node:
        yield from list_objects(node[0], path + (0,))


def change(document, path, action):
    changed = copy.deepcopy(document)
    node = changed
    for step in path:
        node = node[step]
    action(node)
    return changed


def list_loose(validator, document):
    """What the schema should refuse and does not."""
    for path in list_objects(document):
        free = path == ("parameters",)  # its keys are the user's choice
        node = document
        for step in path:
            node = node[step]
        if validator.is_valid(change(document, path, lambda n: n.update({"no such key": 1}))):
            yield f"{list(path)}: takes an unknown key"
        for key in node:
            if not free and validator.is_valid(change(document, path, lambda n: n.pop(key))):
                yield f"{list(path)}: does without {key}"
            if validator.is_valid(change(document, path, lambda n: n.update({key: {"a": 1}}))):
                yield f"{list(path)}: takes anything for {key}"


def main(arguments):
    strict = arguments[0] == "--strict"
    folder, *documents = arguments[strict:]
    good = True
    for item in documents:
        name, path = item.split("=", 1)
        schema = load(pathlib.Path(folder) / f"{name}.schema.json")
        jsonschema.Draft202012Validator.check_schema(schema)
        validator = jsonschema.Draft202012Validator(schema)
        document = load(pathlib.Path(path))
        wrong = [f"{list(e.absolute_path)}: {e.message}" for e in validator.iter_errors(document)]
        if strict:
            wrong += list_loose(validator, document)
        for text in wrong[:20]:
            print(f"{path} ({name}): {text[:300]}")
        good = good and not wrong
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
