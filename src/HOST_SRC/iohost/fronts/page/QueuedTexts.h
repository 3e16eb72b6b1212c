// The texts that wait for clients, and what they cost together.
#pragma once

#include <memory>
#include <string>
#include <utility>

class CQueuedTexts {
public:
    /// What a text costs beside its characters: its object, what counts it, and its place in a client's queue.
    static constexpr size_t COST_OF_EACH = 192;

    /// A text for one client or several. It counts once, until the last of them has taken it or is gone.
    std::shared_ptr<const std::string> Make(std::string strText) {
        const size_t nCost = strText.capacity() + COST_OF_EACH;
        auto pText = std::make_unique<const std::string>(std::move(strText));
        *m_pBytes += nCost;
        return {pText.release(), [pBytes = m_pBytes, nCost](const std::string* pGone) {
                    *pBytes -= nCost;
                    delete pGone;
                }};
    }

    size_t Bytes() const { return *m_pBytes; }

private:
    std::shared_ptr<size_t> m_pBytes = std::make_shared<size_t>(0); ///< texts may outlive the server
};
