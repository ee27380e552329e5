#include "engine/sqlite/statement_budget.h"

#include "engine/sqlite/memory_methods.h"
#include "engine/sqlite/temporary_files.h"

#include <algorithm>
#include <stdexcept>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace engine {

namespace {

constexpr std::size_t workBetweenLooks = 64 * 1024; ///< bytes; well below a millisecond
constexpr std::size_t workOfAllocation = 256;
constexpr std::int64_t megabyte = 1024 * 1024;
constexpr std::int64_t mostWritten = 1024 * megabyte;
constexpr std::int64_t muchMemory = 16 * megabyte;

thread_local StatementBudget *currentBudget = nullptr;

} // namespace

StatementBudget::StatementBudget(const Job &job, std::int64_t &kept)
    : m_job(job)
    , m_kept(kept)
    , m_limit(std::int64_t(std::min<std::size_t>(job.options.memoryLimit, std::size_t(1) << 40)))
    , m_taken(kept)
{
    currentBudget = this;
}

StatementBudget::~StatementBudget()
{
    currentBudget = nullptr;
#ifdef __GLIBC__
    if (m_largest - m_kept > muchMemory)
        malloc_trim(0);
#endif
    m_kept = m_taken;
}

StatementBudget *StatementBudget::current() { return currentBudget; }

void StatementBudget::work(std::size_t bytes)
{
    StatementBudget *const budget = currentBudget;
    if (!budget || (budget->m_work += bytes) < workBetweenLooks)
        return;
    budget->m_work = 0;
    if (budget->mustStop())
        throw std::runtime_error("stopped");
}

bool StatementBudget::mayTake(std::size_t bytes)
{
    if (m_taken + m_gathered + std::int64_t(bytes) > m_limit) {
        m_isOutOfMemory = true;
        return false;
    }
    m_work += workOfAllocation + bytes / 8;
    if (m_work < workBetweenLooks)
        return true;
    m_work = 0;
    return !mustStop();
}

void StatementBudget::take(std::int64_t bytes)
{
    m_taken += bytes;
    m_largest = std::max(m_largest, m_taken + m_gathered);
}

void StatementBudget::setGathered(std::size_t bytes)
{
    m_gathered = std::int64_t(bytes);
    m_largest = std::max(m_largest, m_taken + m_gathered);
}

bool StatementBudget::mayWrite(std::int64_t bytes)
{
    if (m_written + bytes > mostWritten)
        m_isOutOfFiles = true;
    return m_written + bytes <= mostWritten && !mustStop();
}

void StatementBudget::throwIfExhausted() const
{
    m_job.throwIfStopped();
    if (m_isOutOfFiles)
        throw Error(Failure::Database,
            "排序或分组的数据超过了临时文件的上限 " + std::to_string(mostWritten / megabyte) + " MB，请缩小查询范围或减少列数");
    if (m_isOutOfMemory)
        throw Error(Failure::Database, "查询需要的内存超过了上限 " + std::to_string(m_limit / megabyte) + " MB，请缩小查询范围或简化语句");
}

const char *StatementBudget::fileSystem()
{
    static const bool counted = memory::isCounted();
    if (!counted)
        throw Error(Failure::Unavailable, "程序中的 SQLite 已在使用，无法限制语句的内存；请重新启动程序");
    static const char *const name = temporaryFiles::registerFileSystem();
    return name;
}

} // namespace engine
