// `_tessel.Simulator`: the in-process simulator, on loopback ports of its own choosing. Every
// method that waits for the simulator's thread releases the GIL.

#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include <pybind11/stl.h>

#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Bindings.h"

namespace Korvo::Python {
namespace {

namespace py = pybind11;
namespace Sim = Plexis::Tessel::Simulator;

std::chrono::milliseconds Duration(double seconds) {
    if (!(seconds >= 0) || seconds > 3600.0) {
        throw std::invalid_argument("a delay is between 0 and 1 hour");
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::llround(seconds * 1000)));
}

class PySimulator {
public:
    PySimulator(int servers, int clips, std::uint64_t seed, int players, int recorders,
                int playlists, int anglesGroups, std::size_t partSize, bool encrypted) {
        Sim::SimulatorOptions options;
        options.servers = servers;
        options.clips = clips;
        options.seed = seed;
        options.playersPerServer = players;
        options.recordersPerServer = recorders;
        options.playlists = playlists;
        options.anglesGroups = anglesGroups;
        options.partSize = partSize;
        if (encrypted) {
            options.curveSecretKey = Sim::GenerateCurveKeyPair().second;
        }
        py::gil_scoped_release release;
        simulator = std::make_unique<Sim::Simulator>(std::move(options));
    }

    ~PySimulator() { Stop(); }

    void Stop() {
        if (!simulator) {
            return;
        }
        auto stopping = std::move(simulator);
        py::gil_scoped_release release;
        stopping.reset();
    }

    Sim::Simulator& Live() {
        if (!simulator) {
            throw std::runtime_error("the simulator is stopped");
        }
        return *simulator;
    }

    void SetFaults(double replyDelay, double replyJitter, double dropFraction,
                   double malformedFraction, double duplicateFraction, bool silent) {
        Sim::Faults faults;
        faults.replyDelay = Duration(replyDelay);
        faults.replyJitter = Duration(replyJitter);
        faults.dropFraction = dropFraction;
        faults.malformedFraction = malformedFraction;
        faults.duplicateFraction = duplicateFraction;
        faults.silent = silent;
        auto& live = Live();
        py::gil_scoped_release release;
        live.SetFaults(faults);
    }

    py::dict Statistics() {
        Sim::Statistics statistics;
        {
            auto& live = Live();
            py::gil_scoped_release release;
            statistics = live.GetStatistics();
        }
        py::dict result;
        result["commands_received"] = statistics.commandsReceived;
        result["malformed_received"] = statistics.malformedReceived;
        result["replies_sent"] = statistics.repliesSent;
        result["replies_dropped"] = statistics.repliesDropped;
        result["notifications_published"] = statistics.notificationsPublished;
        result["restarts"] = statistics.restarts;
        result["replies_shed"] = statistics.repliesShed;
        return result;
    }

    std::unique_ptr<Sim::Simulator> simulator;
};

}  // namespace

void BindSimulator(py::module_& module) {
    py::class_<PySimulator> simulator(module, "Simulator");
    simulator
        .def(py::init<int, int, std::uint64_t, int, int, int, int, std::size_t, bool>(),
             py::arg("servers"), py::arg("clips"), py::arg("seed"), py::arg("players"),
             py::arg("recorders"), py::arg("playlists"), py::arg("angles_groups"),
             py::arg("part_size"), py::arg("encrypted"))
        .def_property_readonly("commands",
                               [](PySimulator& self) { return self.Live().CommandEndpoint(); })
        .def_property_readonly(
            "notifications", [](PySimulator& self) { return self.Live().NotificationEndpoint(); })
        .def_property_readonly("public_key",
                               [](PySimulator& self) { return self.Live().PublicKey(); })
        .def("set_faults", &PySimulator::SetFaults, py::arg("reply_delay"),
             py::arg("reply_jitter"), py::arg("drop_fraction"), py::arg("malformed_fraction"),
             py::arg("duplicate_fraction"), py::arg("silent"))
        .def("statistics", &PySimulator::Statistics)
        .def("restart", [](PySimulator& self) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            live.Restart();
        })
        .def("drop_off_network", [](PySimulator& self, int server) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            return live.DropOffNetwork(server);
        })
        .def("return_to_network", [](PySimulator& self, int server) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            return live.ReturnToNetwork(server);
        })
        .def("add_server", [](PySimulator& self) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            return live.AddServer();
        })
        .def("remove_server", [](PySimulator& self, int server) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            return live.RemoveServer(server);
        })
        .def("wait_for_subscriber", [](PySimulator& self, const std::string& topic, double seconds) {
            auto& live = self.Live();
            const auto limit = Duration(seconds);
            py::gil_scoped_release release;
            return live.WaitForSubscriber(topic, limit);
        })
        .def("clip_count", [](PySimulator& self) {
            auto& live = self.Live();
            py::gil_scoped_release release;
            return live.ClipCount();
        })
        .def("stop", &PySimulator::Stop);
}

}  // namespace Korvo::Python
