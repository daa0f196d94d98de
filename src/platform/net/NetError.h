#pragma once

#include <string>

namespace mailvane {

/// There are two ways to say that something failed. A routine that knows what went wrong returns a
/// value with a number and a text, as here and in DaoError, and its caller decides what becomes of
/// it. A routine that speaks with the user has told the failure itself, and returns only whether to
/// go on; its comment says "which has been told".
///
/// Outcome of a network operation: code 0 is success; an SMTP refusal carries its reply code, any
/// other failure a code below 100. The description is what error texts and logs show.
struct [[nodiscard]] NetError {
    int code = 0;
    std::string description;

    bool Failed() const { return code != 0; }
    bool Ok() const { return code == 0; }
    void Ignore() const {}
};

namespace net_error {
inline constexpr int NotConnected = 1;  ///< "Socket is not connected."
inline constexpr int ConnectFailed = 2;
inline constexpr int NameNotFound = 3;
inline constexpr int TlsFailed = 4;
inline constexpr int ConnectionLost = 5;
inline constexpr int TimedOut = 6;
inline constexpr int Canceled = 7;
inline constexpr int BadReply = 8;  ///< the server does not speak the protocol
inline constexpr int NoRecipients = 9;
inline constexpr int FileUnreadable = 10;
inline constexpr int LogonImpossible = 11;
/// The end of the data was sent and the connection broke before the answer came: the message may
/// have been accepted.
inline constexpr int AnswerLost = 12;
/// A call from inside a handler while another one still runs; that one goes on, and onError is not
/// told.
inline constexpr int Busy = 13;
inline constexpr int NoSender = 14;
inline constexpr int FileUnwritable = 15;
inline constexpr int TooLarge = 16;     ///< the message is over the limit that the server told
inline constexpr int BadAddress = 17;   ///< an address that this server cannot take
inline constexpr int NoMailTaken = 18;  ///< the domain says that it takes no mail (RFC 7505)
}  // namespace net_error

}  // namespace mailvane
