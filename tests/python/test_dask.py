"""Reviews on a cluster: a real scheduler with workers in processes of their own."""

import os
import signal

import pytest
from distributed import Client, LocalCluster

import tarn
from conftest import FLOW

MODELS = [str(FLOW / "models" / name) for name in ("sound.tdf", "faulty.tdf", "early.tdf", "missing.tdf")]


@pytest.fixture(scope="module")
def client(tmp_path_factory):
    with LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None,
                      local_directory=str(tmp_path_factory.mktemp("dask"))) as cluster, Client(cluster) as one:
        yield one


def plain(results):
    return [(one.model, one.findings, str(one.error)) for one in results]


def test_a_cluster_says_what_this_machine_says(client, flow):
    models = [MODELS[i % 4] for i in range(60)]
    assert plain(tarn.review(flow, models, client=client, batch=7)) == plain(tarn.review(flow, models, jobs=1))


def test_a_worker_that_is_lost_loses_nothing(client, flow):
    models = [MODELS[i % 4] for i in range(400)]
    results = tarn.review(flow, models, client=client, batch=5)
    first = next(results)
    pids = client.run(os.getpid)
    os.kill(next(iter(pids.values())), signal.SIGKILL)
    assert [first.model, *(one.model for one in results)] == models


def test_models_that_are_not_files_go_along(client, flow):
    models = [tarn.Model.read(MODELS[1]), tarn.Model.read(MODELS[1]).tree]
    text, state = tarn.review(flow, models, client=client)
    assert text.findings == tarn.Review(flow).judge(models[0]) and state.model == "<dictionary>"


def test_a_batch_must_have_models(flow):
    with pytest.raises(ValueError, match="batch is 0"):
        tarn.review(flow, MODELS, client=object(), batch=0)
