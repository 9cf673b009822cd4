"""Reviews on a cluster: a real scheduler with workers in processes of their own."""

import os
import signal
from collections.abc import Iterable, Iterator
from typing import Any

import pytest
import distributed

import tarn
from conftest import FLOW

# The package is only partly typed.
Client: Any = distributed.Client
Cluster: Any = distributed.LocalCluster

MODELS = [str(FLOW / "models" / name) for name in ("sound.tdf", "faulty.tdf", "early.tdf", "missing.tdf")]


@pytest.fixture(scope="module")
def client(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Any]:
    with Cluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None,
                      local_directory=str(tmp_path_factory.mktemp("dask"))) as cluster, Client(cluster) as one:
        yield one


def plain(results: Iterable[tarn.Reviewed]) -> list[tuple[str, tarn.Findings | None, str]]:
    return [(one.model, one.findings, str(one.error)) for one in results]


def test_a_cluster_says_what_this_machine_says(client: Any, flow: tarn.Rules) -> None:
    models = [MODELS[i % 4] for i in range(60)]
    assert plain(tarn.review(flow, models, client=client, batch=7)) == plain(tarn.review(flow, models, jobs=1))


def test_a_worker_that_is_lost_loses_nothing(client: Any, flow: tarn.Rules) -> None:
    models = [MODELS[i % 4] for i in range(400)]
    results = tarn.review(flow, models, client=client, batch=5)
    first = next(results)
    pids = client.run(os.getpid)
    os.kill(next(iter(pids.values())), signal.SIGKILL)
    assert [first.model, *(one.model for one in results)] == models


def test_models_that_are_not_files_go_along(client: Any, flow: tarn.Rules) -> None:
    model = tarn.Model.read(MODELS[1])
    text, state = tarn.review(flow, [model, model.tree], client=client)
    assert text.findings == tarn.Review(flow).judge(model) and state.model == "<dictionary>"


def test_a_batch_must_have_models(flow: tarn.Rules) -> None:
    with pytest.raises(ValueError, match="batch is 0"):
        tarn.review(flow, MODELS, client=object(), batch=0)
