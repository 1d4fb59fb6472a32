"""Models whose names would do harm where they are taken for more than names.

Each name stands in every position: namespace, folder, subject, schema and table, item, join,
shortcut, filter, description and the reason of a decision.
"""

NAMES = {
    "quotes": "it's \"quoted\" and `ticked`",
    "markup": "<b>bold</b> & <i>more</i>",
    "script": "</script><script>alert(1)</script>",
    "handler": "\"><img src=x onerror=alert(1)>",
    "comment": "--><!-- ]]> */ /* {# #} --",
    "lines": "two\nlines\r\tand more",
    "controls": "\u0001\b\u001b[31m\u001b]0;title\u0007\u007f",
    "high controls": "\u0085\u009b31m",
    "direction": "right \u202e tfel \u2066\u200f",
    "invisible": "in\u200bvisible\u00ad\ufeff\u2028\u2029\U000e0041",
    "shell": "$(touch pwned); `touch pwned` | touch pwned & touch pwned",
    "statement": "x\"; DROP TABLE hub; --",
    "statement in ticks": "x`; DROP TABLE hub; #",
    "statement in brackets": "a]]b]; DROP TABLE hub; --",
    "backslash": "\\N \\L \\",
    "percent": "%s %n %% %%{init: {}}%% 100%",
    "entity": "&lt;entity&gt; &#60;b&#62; &quot;",
    "template": "{{{data}}} {a|b} @DATA@ ${data} {% x %}",
    "path": "../../pwned",
    "dots": "a.b.[c]]d]",
    "id": "100:7",
    "option": "--output",
    "reserved": "select",
    "case": "Case",
    "other case": "case",
    "blanks": "   ",
    "wide blanks": "\u00a0\u3000",
    "emoji": "\U0001f469\u200d\U0001f469\u200d\U0001f467 \U0001f3f3\ufe0f\u200d\U0001f308",
    "letters": "\u05e2\u05d1\u05e8\u05d9\u05ea \u4e2d\u6587 e" + 9 * "\u0301",
    "long": 61 * "l" + "1",
    "long twin": 61 * "l" + "2",
    "formula": "=cmd|'/c calc'!A1",
}
NUL = "a\u0000b"
HUGE = 300_000 * "n"


def bracket(name):
    """Returns the name as a reference writes it."""
    return "[" + name.replace("]", "]]") + "]"


def join(name, left, right, condition):
    return {"name": name, "left": left, "leftCardinality": "1..n", "right": right,
            "rightCardinality": "1..1", "condition": condition}


def make_namespace(name):
    part = bracket(name)
    subject = {"name": name, "table": f"{part}.{part}", "items": [name], "quoted": True,
               "keys": [[name]], "description": name}
    return {"name": name, "folders": [{"name": name, "subjects": [subject]}],
            "filters": [{"name": name, "condition": f"{part}.{part}.{part} = 1"}]}


def make_model(names, schemas=True):
    """Returns a model with a subject "hub" that is joined to a subject of each name and, a second
    time, to a shortcut of that name. Without schemas the tables lie side by side."""
    namespaces = [make_namespace(name) for name in names]
    if not schemas:
        for namespace in namespaces:
            subject = namespace["folders"][0]["subjects"][0]
            subject["table"] = bracket(subject["name"])
    joins = []
    for name in names:
        part = bracket(name)
        joins.append(join(name, "hub", f"{part}.{part}", f"[hub].{part} = {part}.{part}.{part}"))
        joins.append(join(f"role {name}", "hub", f"[role {part[1:]}",
                          f"[hub].{part} = [role {part[1:]}.{part}"))
    return {"version": 1, "namespaces": namespaces, "relationships": joins,
            "subjects": [{"name": "hub", "items": list(names), "quoted": True,
                          "description": " ".join(names)}],
            "shortcuts": [{"name": f"role {name}", "target": f"{bracket(name)}.{bracket(name)}"}
                          for name in names],
            "decisions": [{"subjects": ["hub", f"{bracket(name)}.{bracket(name)}"],
                           "prefer": [bracket(name)], "reason": name or "none"} for name in names],
            "acceptedFindings": [{"id": f"unreached/{name}", "reason": name} for name in names]}
