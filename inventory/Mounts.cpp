#include "inventory/Mounts.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

#include "common/system/MountTable.h"
#include "inventory/InventoryError.h"

namespace tarn {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t usualThreads = 8;
constexpr std::chrono::milliseconds stuckAfter{100}; // then others are asked by another thread

/// One mount that is asked, for whoever waits.
struct Question {
    std::string mountPoint;
    std::size_t askers = 0;
    std::optional<Clock::time_point> begun;
    bool isAnswered = false;
    std::optional<MountSizes> sizes;
};
using QuestionPointer = std::shared_ptr<Question>;

std::optional<MountSizes> askSizes(const char *mountPoint) {
    struct statvfs64 status {};
    if (solaris::statvfs64(mountPoint, &status) != 0) {
        return std::nullopt;
    }
    const std::uint64_t size = status.f_frsize;
    return MountSizes{status.f_blocks * size, status.f_bfree * size, status.f_bavail * size};
}

/// All that is asked in this process. Threads that hang outlive every call, so each of them holds a share of it.
class Questions : public std::enable_shared_from_this<Questions> {
public:
    /// The question about that mount that has no answer yet: one for all who ask.
    QuestionPointer ask(const std::string &mountPoint) {
        const std::lock_guard lock(mutex);
        if (const auto found = open.find(mountPoint); found != open.end()) {
            ++found->second->askers;
            return found->second;
        }
        auto question = std::make_shared<Question>();
        question->mountPoint = mountPoint;
        question->askers = 1;
        std::list<QuestionPointer> last{question};
        open.emplace(mountPoint, question);
        waiting.splice(waiting.end(), last); // which cannot fail: what is open and never waited would find no answer
        return question;
    }

    /// What one caller asked; what nobody has come to, or waits for any more, is forgotten.
    void withdraw(const std::vector<QuestionPointer> &asked) noexcept {
        const std::lock_guard lock(mutex);
        for (const QuestionPointer &question : asked) {
            --question->askers;
        }
        std::erase_if(waiting, [&](const QuestionPointer &question) {
            return question->askers == 0 && open.erase(question->mountPoint) != 0;
        });
    }

    /// Waits until all are answered, or the time is over for each. The mounts, in that order, get what is told.
    void await(const std::vector<QuestionPointer> &asked, std::chrono::milliseconds limit,
               std::vector<InventoryMount> &mounts) {
        const Clock::time_point end = Clock::now() + limit;
        std::unique_lock lock(mutex);
        const auto isSettled = [&](const QuestionPointer &question) {
            return question->isAnswered || (question->begun && Clock::now() - *question->begun >= limit);
        };
        auto firstOpen = asked.begin(); // what is settled stays so, and is looked at once
        const auto areSettled = [&] {
            firstOpen = std::find_if_not(firstOpen, asked.end(), isSettled);
            return firstOpen == asked.end();
        };
        while (!areSettled() && Clock::now() < end) {
            startThreads();
            changed.wait_until(lock, std::min(end, Clock::now() + stuckAfter), areSettled);
        }
        for (std::size_t i = 0; i < mounts.size(); ++i) {
            mounts[i].isAnswered = asked[i]->isAnswered;
            mounts[i].sizes = asked[i]->sizes;
        }
    }

private:
    void startThreads() {
        const auto stuck = static_cast<std::size_t>(std::ranges::count_if(open, [](const auto &entry) {
            return entry.second->begun && Clock::now() - *entry.second->begun >= stuckAfter;
        }));
        const std::size_t wanted = std::min({stuck + usualThreads, threads + waiting.size(), mostThreads});
        while (threads < wanted) {
            try {
                std::thread([questions = shared_from_this()] { questions->work(); }).detach();
            } catch (const std::system_error &) {
                return; // those that there are do it, or the time runs out
            }
            ++threads;
        }
    }

    void work() noexcept {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, nullptr); // signals are the program's own threads' to take
        std::unique_lock lock(mutex);
        while (!waiting.empty()) {
            const QuestionPointer question = waiting.front();
            waiting.pop_front();
            question->begun = Clock::now();
            lock.unlock();
            const std::optional<MountSizes> sizes = askSizes(question->mountPoint.c_str());
            lock.lock();
            question->sizes = sizes;
            question->isAnswered = true;
            open.erase(question->mountPoint);
            changed.notify_all();
        }
        --threads;
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::string, QuestionPointer> open; // those without an answer
    std::list<QuestionPointer> waiting;          // of these, those that nobody was asked yet
    std::size_t threads = 0;
};

/// Each entry of the mount table whose kind passes.
template <class Passes, class Take>
void forEachMount(const Passes &passes, const Take &take) {
    MountTable table;
    if (!table.isOpen()) {
        throw InventoryError(std::string("Unable to open mount table file: ") + mountTablePath);
    }
    while (const mnttab *const entry = table.nextOf(passes)) {
        take(*entry);
    }
}

/// What one call asks, for as long as it does.
struct Asked {
    explicit Asked(Questions &all) : questions(all) {
    }
    ~Asked() {
        questions.withdraw(asked);
    }
    Asked(const Asked &) = delete;
    Asked &operator=(const Asked &) = delete;

    Questions &questions;
    std::vector<QuestionPointer> asked;
};

} // namespace

std::vector<InventoryMount> readMounts(std::chrono::milliseconds limit, std::string_view mountPoint) {
    static const auto questions = std::make_shared<Questions>();
    std::vector<InventoryMount> mounts;
    forEachMount(isOfInventory, [&](const mnttab &entry) {
        if (mountPoint.empty() || mountPoint == entry.mnt_mountp) {
            mounts.push_back({entry.mnt_mountp, entry.mnt_special, entry.mnt_fstype, false, {}});
        }
    });
    if (limit == limit.zero()) {
        return mounts;
    }
    Asked ours(*questions);
    ours.asked.reserve(mounts.size());
    for (const InventoryMount &mount : mounts) {
        ours.asked.push_back(questions->ask(mount.mountPoint));
    }
    questions->await(ours.asked, limit, mounts);
    return mounts;
}

std::vector<std::string> readOtherKinds() {
    std::vector<std::string> kinds;
    const auto isOther = [](std::string_view kind) { return !isOfLogicalDisk(kind) && !isOfInventory(kind); };
    forEachMount(isOther, [&](const mnttab &entry) { kinds.emplace_back(entry.mnt_fstype); });
    return kinds;
}

} // namespace tarn
