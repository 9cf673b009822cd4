"""Rule-driven set-up of simulation models, in Python.

    import tarn

    rules = tarn.load_rules("rules/")
    session = tarn.Session(rules, "pump.tdf")
    session.set("Domain:rotor/Motion", "Rotating").or_raise()
    for finding in session.review():
        print(finding)
    session.save()

docs/python.md is the manual.
"""

import tarn._interpreter  # before the compiled module is loaded
from tarn.errors import EditRefused, Error, ModelError, OpenError, RuleError, SaveError, UnknownItem
from tarn.model import Model, value_text
from tarn.records import (BoundsChange, ChildTypeRecord, ChoicesChange, Conversion, Diagnostic, DiagnosticFix,
                          DiagnosticNote, Difference, Edit, EditResult, Effect, Expected, Explanation, ExplanationNode,
                          ExplanationResult, Finding, Findings, FollowedReference, Found, Goal, HowResult, Item,
                          ModelFault, ModelRead, ObjectRecord, OwnValue, ParamAllowedValues, ParamRecord, Place, Proof,
                          ProofNode, ProofRead, ProofRule, Refused, Step, TextChange, TryResult, ValueChange, Waiting,
                          WaitingChange, Way)
from tarn.reviewing import Review, Reviewed, review
from tarn.rules import Rules, lint_rules, lint_text, load_rules, parse_rules
from tarn.session import QueryResult, Session
from tarn._tarn import version as __version__

__all__ = [
    "BoundsChange", "ChildTypeRecord", "ChoicesChange", "Conversion", "Diagnostic", "DiagnosticFix", "DiagnosticNote",
    "Difference", "Edit", "EditRefused", "EditResult", "Effect", "Error", "Expected", "Explanation", "ExplanationNode",
    "ExplanationResult", "Finding", "Findings", "FollowedReference", "Found", "Goal", "HowResult", "Item", "Model",
    "ModelError", "ModelFault", "ModelRead", "ObjectRecord", "OpenError", "OwnValue", "ParamAllowedValues",
    "ParamRecord", "Place", "Proof", "ProofNode", "ProofRead", "ProofRule", "QueryResult", "Refused", "Review",
    "Reviewed", "RuleError", "Rules", "SaveError", "Session", "Step", "TextChange", "TryResult", "UnknownItem",
    "ValueChange", "Waiting", "WaitingChange", "Way", "lint_rules", "lint_text", "load_rules", "parse_rules", "review",
    "value_text",
]
