#ifndef PLATFORM_AQE_REQUESTCONTEXT_H
#define PLATFORM_AQE_REQUESTCONTEXT_H

#include "ORVMessage.h"
#include "QEENGINE_EXPORT.h"
#include "QF_Message_V3.h"

#include <memory>
#include <vector>

class AQE_I_Authentication;
class AQE_JoinCache;

/// What belongs to one request: its join cache, its kind, its user and its messages.
class QEENGINE_EXPORT AQE_RequestContext
{
public:
    /// The kind of command that the request carries out.
    enum ECommandType
    {
        CommandTypeNone = 0,
        CommandTypeQuery = 1,
        CommandTypeValidate = 2,
        /// A request that never runs against the database, so that a cross product is harmless.
        CommandTypeDescribe = 3,
    };

    /// A message for the user of the request.
    struct UserMessage
    {
        QF_Message_V3::ESeverity severity;
        QF_Message_V3::EType type;
        ORVMessage message;
    };

    explicit AQE_RequestContext(ECommandType commandType = CommandTypeQuery);
    AQE_RequestContext(const AQE_RequestContext&) = delete;
    AQE_RequestContext& operator=(const AQE_RequestContext&) = delete;
    virtual ~AQE_RequestContext();

    /// Keeps the cache, in place of the one before; null takes it away. A unique pointer converts;
    /// how the cache is deleted is settled there, so that the platform need not know it.
    void SetJoinCache(std::shared_ptr<AQE_JoinCache> cache);
    /// Returns the request's join cache, which stays the request's; null when it has none.
    [[nodiscard]] AQE_JoinCache* GetJoinCache() const noexcept { return mJoinCache.get(); }

    [[nodiscard]] ECommandType GetCommandType() const noexcept { return mCommandType; }

    /// Sets who makes the request; borrowed, may be null.
    void SetAuthentication(AQE_I_Authentication* authentication);
    [[nodiscard]] AQE_I_Authentication* GetAuthentication() const noexcept
    {
        return mAuthentication;
    }

    void AddUserMessage(UserMessage message);
    /// Returns the messages in the order in which they were attached.
    [[nodiscard]] const std::vector<UserMessage>& GetUserMessages() const noexcept
    {
        return mUserMessages;
    }

private:
    std::shared_ptr<AQE_JoinCache> mJoinCache;
    ECommandType mCommandType;
    AQE_I_Authentication* mAuthentication = nullptr;
    std::vector<UserMessage> mUserMessages;
};

#endif
