// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LoopbackPeer.h"

#include <cstring>

#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct Question
{
    nlmsghdr header;
    inet_diag_req_v2 request;
};

struct Answer
{
    nlmsghdr header;
    inet_diag_msg socket;
    char attributes[512]; // that follow unasked
};

bool ask(const Question &question, Answer *answer)
{
    const int kernel = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG);
    if (kernel < 0)
        return false;
    // The answer is there as soon as the question is sent.
    const bool isAnswered = send(kernel, &question, sizeof question, 0) == ssize_t(sizeof question)
        && recv(kernel, answer, sizeof *answer, MSG_DONTWAIT) >= ssize_t(offsetof(Answer, attributes));
    close(kernel);
    return isAnswered && answer->header.nlmsg_type == SOCK_DIAG_BY_FAMILY;
}

} // namespace

std::optional<uid_t> LoopbackPeer::user(const sockaddr_in &bound, const sockaddr_in &connected)
{
    Question question = {};
    question.header.nlmsg_len = sizeof question;
    question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    question.header.nlmsg_flags = NLM_F_REQUEST;
    question.request.sdiag_family = AF_INET;
    question.request.sdiag_protocol = IPPROTO_TCP;
    inet_diag_sockid &id = question.request.id;
    id.idiag_sport = bound.sin_port;
    id.idiag_dport = connected.sin_port;
    id.idiag_src[0] = bound.sin_addr.s_addr;
    id.idiag_dst[0] = connected.sin_addr.s_addr;
    id.idiag_cookie[0] = INET_DIAG_NOCOOKIE;
    id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;

    Answer answer = {};
    // Where no socket is connected so, the kernel answers with one that listens at the bound address. One that its
    // program has closed has no inode, and counts as root's.
    if (!ask(question, &answer) || answer.socket.id.idiag_sport != id.idiag_sport
        || answer.socket.id.idiag_dport != id.idiag_dport || answer.socket.idiag_inode == 0)
        return {};
    return answer.socket.idiag_uid;
}
