"""Reviews of many models."""

from __future__ import annotations

import itertools
import os
from collections import deque
from collections.abc import Generator, Iterable, Mapping
from concurrent.futures import Future, ThreadPoolExecutor
from dataclasses import dataclass
from typing import Any, Literal

from tarn import _checks, _tarn
from tarn._html import table
from tarn.errors import Error, ModelError
from tarn.model import Model, as_model
from tarn.records import Findings, _findings_table
from tarn.rules import AnyPath, Rules, _database_of

__all__ = ["Review", "Reviewed", "review"]

Phases = Literal["dependency", "global", "all"]
AnyModel = Model | AnyPath | Mapping[str, Any]


@dataclass(frozen=True, slots=True)
class Reviewed:
    """The review of one model: findings, or the error that kept it from being judged."""

    model: str
    """The file, or the source of the model."""
    findings: Findings | None
    error: Error | OSError | None

    @property
    def ok(self) -> bool:
        """The model was judged and has no errors. It may have warnings."""
        return self.findings is not None and not self.findings.errors

    def __str__(self) -> str:
        if self.error is not None:
            return f"{self.model}: {self.error}"
        assert self.findings is not None
        return f"{self.model}: {len(self.findings.errors)} errors, {len(self.findings.warnings)} warnings"

    def _repr_html_(self) -> str:
        if self.findings is None:
            return table(None, [[str(self.error)]], caption=self.model)
        return _findings_table(self.findings.list, self.model) or table(None, [["Nothing is wrong."]], self.model)


class Review:
    """Finds everything that is wrong with models. One review serves any number of models, on several threads at once.

    >>> import tarn
    >>> review = tarn.Review(tarn.load_rules("examples/flow/rules"))
    >>> findings = review.judge("examples/flow/models/faulty.tdf")
    >>> print(findings.list[0].path, findings.list[0].code, findings.list[0].places[0])
    /Case/Analysis parameter-not-available examples/flow/models/faulty.tdf:16:16
    """

    __slots__ = ("_options", "_reviewer", "_rules")

    def __init__(self, rules: Rules, *, roots: Iterable[str] = (), phases: Phases = "all",
                 only_validator: bool = False) -> None:
        """`roots` are the paths of the objects to judge with everything below them; by default all that the rules look
        at. `phases` are those of the validator: "dependency", each object by itself; "global", the model as a whole; or
        "all". With `only_validator`, unknown names and values that do not fit their declaration are not reported.
        """
        self._rules = rules
        paths = tuple(_checks.text(root, "a root") for root in _checks.several(roots, "roots"))
        self._options = (paths, phases, only_validator)
        self._reviewer = _tarn.Reviewer(_database_of(rules), list(paths), phases, only_validator)

    @property
    def rules(self) -> Rules:
        return self._rules

    def judge(self, model: AnyModel) -> Findings:
        """The findings in a model: a `Model`, the name of a file, or dictionaries.

        Findings in a text have their places there. Raises `ModelError` for a text with malformed lines, and `OSError` if
        the file cannot be read. Costs a walk of the model. The interpreter lock is released meanwhile.
        """
        known = as_model(model)
        if known.has_text:
            return self._reviewer.judge_text(known.source, known.content)
        return self._reviewer.judge_state(known._known_state())

    def try_judge(self, model: AnyModel) -> Reviewed:
        """The same, with an error as a part of the result."""
        name = model.source if isinstance(model, Model) else \
            "<dictionary>" if isinstance(model, Mapping) else os.fspath(model)
        try:
            return Reviewed(name, self.judge(model), None)
        except (Error, OSError) as error:
            return Reviewed(name, None, error)

    def __reduce__(self) -> tuple[object, ...]:
        return _review_of, (self._rules, *self._options)


def _review_of(rules: Rules, roots: tuple[str, ...], phases: Phases, only_validator: bool) -> Review:
    return Review(rules, roots=roots, phases=phases, only_validator=only_validator)


def review(rules: Rules, models: Iterable[AnyModel], *, jobs: int | None = None, roots: Iterable[str] = (),
           phases: Phases = "all", only_validator: bool = False, client: Any = None,
           batch: int = 50) -> Generator[Reviewed, None, None]:
    """Reviews models on several threads, and yields a result for each, in their order, as soon as it is there.

    Each model is a `Model`, the name of a file, or dictionaries. `models` may be endless: it is read only a few models
    ahead, by the thread that asks for results. `jobs` is the number of threads, by default that of the processors. A
    model that cannot be judged has its error in the result; the others are still judged. The other arguments are those
    of `Review`.

    With a `client` of Dask distributed, the workers of its cluster judge the models, in batches of `batch`; `jobs` is not
    used. Files are read by the workers, so all machines must see them under the same name. A worker parses the rules
    once. The work of a worker that is lost is done again by another one.

    >>> import tarn
    >>> rules = tarn.load_rules("examples/flow/rules")
    >>> for one in tarn.review(rules, ["examples/flow/models/sound.tdf", "examples/flow/models/missing.tdf"]):
    ...     print(one)
    examples/flow/models/sound.tdf: 0 errors, 0 warnings
    examples/flow/models/missing.tdf: [Errno 2] No such file or directory: 'examples/flow/models/missing.tdf'
    """
    count = (os.cpu_count() or 1) if jobs is None else _checks.whole(jobs, "jobs", 1)
    _checks.whole(batch, "batch", 1)
    _checks.several(models, "models")
    if isinstance(models, Mapping):
        raise TypeError("models must be a list of models, not one dictionary")
    if client is not None and not hasattr(client, "submit"):
        raise TypeError(f"client must be a Client of Dask distributed, not {type(client).__name__}")
    judge = Review(rules, roots=roots, phases=phases, only_validator=only_validator)
    return _in_order(judge, models, count) if client is None else _on_cluster(judge, models, client, batch)


def _in_order(judge: Review, models: Iterable[AnyModel], jobs: int) -> Generator[Reviewed, None, None]:
    ahead = 4 * jobs  # a few, so that models of unequal size even out
    waiting: deque[Future[Reviewed]] = deque()
    pool = ThreadPoolExecutor(jobs, thread_name_prefix="tarn-review")
    try:
        for model in models:
            waiting.append(pool.submit(judge.try_judge, model))
            if len(waiting) > ahead:
                yield waiting.popleft().result()
        while waiting:
            yield waiting.popleft().result()
    finally:
        pool.shutdown(wait=True, cancel_futures=True)


def _on_cluster(judge: Review, models: Iterable[AnyModel], client: Any, batch: int) -> Generator[Reviewed, None, None]:
    remaining = iter(models)
    waiting: deque[Any] = deque()
    try:
        while some := list(itertools.islice(remaining, batch)):
            # The judge goes along with each batch: a worker that has come late, or instead of another, needs it too.
            waiting.append(client.submit(_judge_all, judge, some, pure=False))
            threads = sum(client.nthreads().values())
            while len(waiting) > 2 * max(threads, 1):
                yield from waiting.popleft().result()
        while waiting:
            yield from waiting.popleft().result()
    finally:
        client.cancel(list(waiting))


def _judge_all(judge: Review, models: list[AnyModel]) -> list[Reviewed]:
    return [judge.try_judge(model) for model in models]
