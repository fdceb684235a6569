#!/usr/bin/python3
"""Validates JSON documents against halinfo's schema: validate_json.py SCHEMA FILE...

Prints one line per document and every violation with its path; exits 1 if any fails."""
import json
import sys

import jsonschema


def main():
    with open(sys.argv[1], encoding="utf-8") as f:
        schema = json.load(f)
    validator_class = jsonschema.validators.validator_for(schema)
    validator_class.check_schema(schema)
    validator = validator_class(schema)
    failed = 0
    for path in sys.argv[2:]:
        try:
            with open(path, encoding="utf-8") as f:
                document = json.load(f)
        except (OSError, ValueError) as error:
            print(f"{path}: not JSON: {error}")
            failed += 1
            continue
        errors = sorted(validator.iter_errors(document), key=lambda e: list(e.absolute_path))
        for error in errors:
            where = "/".join(str(part) for part in error.absolute_path) or "(top)"
            print(f"{path}: {where}: {error.message}")
        print(f"{path}: {'invalid' if errors else 'valid'}")
        failed += bool(errors)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
