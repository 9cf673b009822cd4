"""Studies: many variants of one model, made by edits that the rules keep legal.

    from tarn.study import Factor, LatinHypercube, Normal, Range, Study, run_study

    study = Study(
        rules="rules",
        model="models/house.tdf",
        factors=[
            Factor("building", "/Plant/Building", ["House", "Office"]),
            Factor("head", "/Plant/Circuit:*/Pump/Head", Range(0.2, 0.6), units="bar"),
            Factor("outdoors", "/Plant/Design Temperature", Normal(-12, 3, highest=10), units="degC"),
        ],
        design=LatinHypercube(100),
        seed=7,
        outputs={"power": "/Plant/Boiler:main/Rated Power"},
    )
    outcome = run_study(study, "heads")

`read_study` reads the same from YAML. docs/studies.md is the manual.
"""

from tarn.study.description import read_study, read_table
from tarn.study.designs import MOST_POINTS, Design, FullFactorial, LatinHypercube, OneAtATime, Point, Points, Table
from tarn.study.errors import Fault, Place, StudyError
from tarn.study.factors import Factor, LogNormal, Normal, Range, Triangular, Values, ValueSource
from tarn.study.making import MadePoint, PointMaker, PreparedStudy, prepare
from tarn.study.running import Counts, Outcome, run_study
from tarn.study.study import Output, Study

__all__ = [
    "Counts", "Design", "Factor", "Fault", "FullFactorial", "LatinHypercube", "LogNormal", "MOST_POINTS", "MadePoint",
    "Normal", "OneAtATime", "Outcome", "Output", "Place", "Point", "PointMaker", "Points", "PreparedStudy", "Range",
    "Study", "StudyError", "Table", "Triangular", "ValueSource", "Values", "prepare", "read_study", "read_table",
    "run_study",
]
