// A host: runs the graph that the command line names, and prints what it logs.
#include <QCoreApplication>

#include <corvanta/action_registry.h>
#include <corvanta/run.h>

#include <cstdio>

static bool printProblems(const CorvantaGraph::Problems &problems)
{
    for (const CorvantaGraph::Problem &problem : problems) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(problem.text));
    }
    return !problems.isEmpty();
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: host GRAPH\n");
        return 2;
    }
    corvanta::ActionRegistry registry;
    registry.loadAll(); // finds the modules next to the library
    const auto graph = CorvantaGraph::load(QString::fromLocal8Bit(argv[1]));
    if (printProblems(graph ? graph->validate(registry, {}) : graph.fault().code)) {
        return 2;
    }
    corvanta::Run run(*graph, registry, {}); // messages go to standard error
    if (printProblems(run.problems())) {
        return 2;
    }
    run.start();
    run.wait();
    for (const corvanta::ActionProgress &action : run.progress()) {
        std::printf("%s: %lld rows\n", qUtf8Printable(action.id), action.allRowsOut());
    }
    return run.succeeded() ? 0 : 1;
}
