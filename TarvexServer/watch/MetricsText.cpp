#include "MetricsText.h"

#include "Prometheus.h"
#include "RequestKind.h"

#include <filesystem>
#include <system_error>

namespace tarvex::watch {

namespace {

using requests::Measures;
using requests::Outcome;

std::string label(std::string_view name, std::string_view value)
{
    return std::string(name).append("=\"").append(value).append("\"");
}

std::string kindLabel(std::size_t number)
{
    const std::string_view name = requests::kindAt(number).name;
    return label("kind", name.empty() ? "none" : name);
}

void addEnds(Prometheus &text, const std::string &kind, const Measures::OfKind &measures)
{
    for (std::size_t outcome = 0; outcome < requests::outcomes.size(); ++outcome)
        text.sample(kind + "," + label("outcome", requests::outcomes[outcome]),
                    measures.ended[outcome].count());
}

void addRequests(Prometheus &text, const Measures &measures)
{
    text.counter("tarvex_requests_total", "Requests that were answered, by kind and by how they ended.");
    for (std::size_t i = 0; i < measures.kinds.size(); ++i)
        addEnds(text, kindLabel(i), measures.kinds[i]);
    addEnds(text, label("kind", "page"), measures.pages);
    text.histogram("tarvex_request_duration_seconds", "From the last byte of a request to its answer.");
    for (std::size_t i = 0; i < measures.kinds.size(); ++i)
        text.samples(kindLabel(i), measures.kinds[i].time);
    text.counter("tarvex_unreadable_requests_total", "Requests whose head was refused.");
    text.sample("", measures.unreadable.count());
}

void addRefusals(Prometheus &text, const Measures &measures)
{
    text.counter("tarvex_refusals_total",
                 "Refused requests: a limit of an account (quota), of the disk or the database (no-room), of"
                 " accounts (no-accounts), a delete after a save that was refused (refused-save), or the"
                 " outcome of that name.");
    for (std::size_t i = 1; i < requests::reasons.size(); ++i)
        text.sample(label("reason", requests::reasons[i]), measures.reasons[i].count());
    for (const Outcome outcome : {Outcome::TooManyAttempts, Outcome::Busy, Outcome::TooLarge}) {
        const auto number = static_cast<std::size_t>(outcome);
        std::uint64_t count = measures.pages.ended[number].count();
        for (const Measures::OfKind &kind : measures.kinds)
            count += kind.ended[number].count();
        text.sample(label("reason", requests::outcomes[number]), count);
    }
}

void addConnections(Prometheus &text, const Watched &watched)
{
    const Measures &measures = watched.service.measures();
    text.gauge("tarvex_connections", "Connections that are being served.");
    text.sample("", std::uint64_t(watched.server.connections()));
    text.counter("tarvex_connections_total", "Connections that were taken.");
    text.sample("", measures.connections.count());
    text.counter("tarvex_connections_refused_total",
                 "Of these, the ones beyond the limits: told that the service is busy, or closed at once.");
    text.sample(label("how", "busy"), measures.busyConnections.count());
    text.sample(label("how", "closed"), measures.closedConnections.count());
}

void addWork(Prometheus &text, const Measures &measures)
{
    text.histogram("tarvex_writer_wait_seconds", "What is to be written waits so long for its turn.");
    text.samples("", measures.writerWaits);
    text.histogram("tarvex_hashing_wait_seconds", "A password waits so long for being hashed.");
    text.samples("", measures.hashingWaits);
    text.histogram("tarvex_page_seconds", "A page takes so long, until its answer leaves.");
    text.samples("", measures.pages.time);
    text.counter("tarvex_remembered_answers_total", "Answers to reads that were known still, and others.");
    text.sample(label("found", "hit"), measures.remembered.count());
    text.sample(label("found", "missed"), measures.notRemembered.count());
}

/// A gauge of bytes, unless there is no telling.
void addBytes(Prometheus &text, std::string_view name, std::string_view help, std::uintmax_t bytes,
              const std::error_code &error)
{
    if (error)
        return;
    text.gauge(name, help);
    text.sample("", std::uint64_t(bytes));
}

void addFiles(Prometheus &text, const std::filesystem::path &file)
{
    if (file.empty())
        return; // on another machine
    std::error_code error;
    const auto logBytes = std::filesystem::file_size(file.string() + "-wal", error);
    addBytes(text, "tarvex_database_log_bytes", "The write-ahead log beside the database.", logBytes, error);
    const auto folder = std::filesystem::absolute(file).parent_path();
    const auto free = std::filesystem::space(folder, error).available;
    addBytes(text, "tarvex_disk_free_bytes", "What is free on the disk of the database.", free, error);
}

void addState(Prometheus &text, const Watched &watched)
{
    text.gauge("tarvex_ready", "1 while the service should get requests, as /ready says.");
    text.sample("", std::uint64_t(watched.condition.fault().empty() ? 1 : 0));
    if (const auto figures = watched.condition.figures()) {
        text.gauge("tarvex_accounts", "Accounts there are.");
        text.sample("", static_cast<std::uint64_t>(figures->accounts));
        text.gauge("tarvex_database_bytes", "What the data take in the database.");
        text.sample("", static_cast<std::uint64_t>(figures->bytes));
    }
    addFiles(text, watched.database.file());
    text.counter("tarvex_log_lines_lost_total", "Lines of the log that could not be written.");
    text.sample("", watched.lostLogLines());
    text.gauge("process_start_time_seconds", "When the process started, in seconds since 1970.");
    text.sample("", static_cast<std::uint64_t>(watched.startedAt));
    text.gauge("tarvex_build_info", "1, with the version of the program.");
    text.sample(label("version", watched.version), std::uint64_t(1));
}

} // namespace

std::string metricsText(const Watched &watched)
{
    Prometheus text;
    const Measures &measures = watched.service.measures();
    addRequests(text, measures);
    addRefusals(text, measures);
    addConnections(text, watched);
    addWork(text, measures);
    addState(text, watched);
    return text.text();
}

} // namespace tarvex::watch
