// A key pair and a certificate for 127.0.0.1, made on the spot, and the server's half of TLS with them.
//
//     TlsIdentity identity(folder + "/certificate.pem");
//     AssetServer server({...}, identity.peerMaker());
//     request.pinnedPublicKeys = {identity.pin()};
#pragma once

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "support/asset_server.h"

namespace brindlet {

class TlsIdentity {
  public:
    explicit TlsIdentity(const std::string& certificateFile)
        : key_(EVP_EC_gen("P-256"), EVP_PKEY_free), certificate_(X509_new(), X509_free) {
        X509* certificate = certificate_.get();
        X509_set_version(certificate, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
        X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
        X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
        X509_set_pubkey(certificate, key_.get());
        X509_NAME* name = X509_get_subject_name(certificate);
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("test"), -1, -1, 0);
        X509_set_issuer_name(certificate, name);
        X509_EXTENSION* where = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1");
        X509_add_ext(certificate, where, -1);
        X509_EXTENSION_free(where);
        X509_sign(certificate, key_.get(), EVP_sha256());
        if (std::FILE* file = std::fopen(certificateFile.c_str(), "w")) {
            PEM_write_X509(file, certificate);
            std::fclose(file);
        }
    }

    // As HTTP public key pinning writes it.
    std::string pin() const {
        unsigned char* bytes = nullptr;
        const int size = i2d_PUBKEY(key_.get(), &bytes);
        std::array<unsigned char, 32> digest{};
        EVP_Digest(bytes, static_cast<std::size_t>(size), digest.data(), nullptr, EVP_sha256(), nullptr);
        OPENSSL_free(bytes);
        std::array<unsigned char, 64> text{};
        EVP_EncodeBlock(text.data(), digest.data(), static_cast<int>(digest.size()));
        return "sha256//" + std::string(reinterpret_cast<const char*>(text.data()));
    }

    PeerMaker peerMaker() const {
        std::signal(SIGPIPE, SIG_IGN);  // OpenSSL writes without asking for silence
        const std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
        SSL_CTX_use_certificate(context.get(), certificate_.get());
        SSL_CTX_use_PrivateKey(context.get(), key_.get());
        return [context](int client) -> std::unique_ptr<Peer> {
            auto peer = std::make_unique<TlsPeer>(context.get(), client);
            return SSL_accept(peer->tls.get()) == 1 ? std::move(peer) : nullptr;
        };
    }

  private:
    struct TlsPeer final : Peer {
        TlsPeer(SSL_CTX* context, int client) : tls(SSL_new(context), SSL_free) { SSL_set_fd(tls.get(), client); }
        ~TlsPeer() override { SSL_shutdown(tls.get()); }
        ssize_t receive(char* bytes, std::size_t size) override {
            return SSL_read(tls.get(), bytes, static_cast<int>(size));
        }
        ssize_t send(const char* bytes, std::size_t size) override {
            return SSL_write(tls.get(), bytes, static_cast<int>(size));
        }
        std::unique_ptr<SSL, decltype(&::SSL_free)> tls;
    };

    std::unique_ptr<EVP_PKEY, decltype(&::EVP_PKEY_free)> key_;
    std::unique_ptr<X509, decltype(&::X509_free)> certificate_;
};

}  // namespace brindlet
