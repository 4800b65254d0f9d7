"""Converts a folder of tests on a Dask cluster: convert_on_cluster.py SCHEDULER FOLDER RESULTS

All machines see both folders under the same names. Broken off, it goes on where it was, as torva35.convert does.
"""

import sys

import torva35
from distributed import Client, KilledWorker, as_completed


def convert(client: Client, folder: str, results: str) -> torva35.Report:
    """Converts what has changed, and gives the report of all."""
    jobs = torva35.find_jobs(folder, results, formats=["csv", "html", "answers", "json"])
    report = torva35.Report(results, jobs)
    try:
        tasks = {client.submit(torva35.run_job, job, report.before(job), pure=False): job for job in jobs}
        for task in as_completed(tasks):
            try:
                outcome = task.result()  # waits again for one whose worker was killed before it was fetched
            except KilledWorker as error:  # it has killed as many workers as the scheduler lets it
                outcome = torva35.Outcome(tasks[task].name, "killed", str(error))
            report.add(outcome)
    finally:
        report.close()
    return report


if __name__ == "__main__":
    with Client(sys.argv[1]) as cluster:
        print(convert(cluster, sys.argv[2], sys.argv[3]))
