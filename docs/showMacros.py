"""Filter of the reference: writes what the macros of a header declare in words that Doxygen reads."""

import re
import sys


def record(match):
    leaves = re.findall(r"\(([\w ]+|std::vector<[\w ]+>), (\w+)\)", match["leaves"])
    members = " ".join(f"{kind} {name};" for kind, name in leaves)
    # On one line each, so that line numbers stay.
    return f"class {match['name']} : public orvik::BaseDataItemNode {{ public: {members} }};" + "\n" * match[0].count("\n")


def attribute(match):
    text = "".join(re.findall(r'"([^"]*)"', match[0]))  # the last argument is its tool tip
    base = match["storage"].strip()
    lines = "\n" * match[0].count("\n")
    return f"/** {text} */ struct {match['name']} : {base} {{}};{lines}"


def show(text):
    text = re.sub(r"ORVIK_RECORD\((?P<name>\w+),(?P<leaves>(?:\s*\([^()]*\))+)\);", record, text)
    text = re.sub(r"ORVIK_RECORD_COLL\((\w+), (\w+)\);",
                  r"class \1 : public orvik::BaseDataItemNode { public: orvik::DataItemNodeColl<\2> Coll; };", text)
    text = re.sub(r"ORVIK_PLAN_INDEXED\((\w+), (\w+)\);",
                  r"class \1 : public orvik::BasePlanIndexedColl { public: boost::shared_ptr<\2> getEntry(const orvik::PlanIndex& index) const; };",
                  text)
    text = re.sub(r"ORVIK_(?:OPTIONAL_)?(?:IN|OUT)PUT\((?P<name>\w+), \((?P<storage>[\w:<>, ]+)\),(?:\"[^\"]*\"|[^;\"])*\);",
                  attribute, text)
    text = re.sub(r"ORVIK_PROCESSOR\((\w+), \d+\)", r"public: \1(); ~\1() override;", text)
    return re.sub(r"ORVIK_EXCEPTION\((\w+)\);", r"class \1 : public orvik::BaseException {};", text)


with open(sys.argv[1], encoding="utf-8") as header:
    # The macros' own definitions stay as they are.
    sys.stdout.write("".join(part if part.startswith("#define") else show(part)
                             for part in re.split(r"(#define(?:[^\n]*\\\n)*[^\n]*\n)", header.read())))
