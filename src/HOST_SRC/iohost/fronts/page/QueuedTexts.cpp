#include "fronts/page/QueuedTexts.h"

#include <utility>

std::shared_ptr<const std::string> CQueuedTexts::Make(std::string strText) {
    const size_t nCost = strText.capacity() + COST_OF_EACH;
    auto pText = std::make_unique<const std::string>(std::move(strText));
    *m_pBytes += nCost;
    return {pText.release(), [pBytes = m_pBytes, nCost](const std::string* pGone) {
                *pBytes -= nCost;
                delete pGone;
            }};
}
