// gnutls_probe AUTHORITY HOST PORT: a TLS handshake by GIO, as the application's web view makes it. Status 0 when the
// certificate is accepted.

#include <gio/gio.h>

#include <cstdlib>

namespace {

// The database has to be there before the handshake begins.
void onEvent(GSocketClient*, GSocketClientEvent event, GSocketConnectable*, GIOStream* stream,
             gpointer database) {
    if (event == G_SOCKET_CLIENT_TLS_HANDSHAKING)
        g_tls_connection_set_database(G_TLS_CONNECTION(stream), G_TLS_DATABASE(database));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    GError* problem = nullptr;
    GTlsDatabase* const database = g_tls_file_database_new(argv[1], &problem);
    if (database == nullptr) {
        g_printerr("%s\n", problem->message);
        return 2;
    }
    GSocketClient* const client = g_socket_client_new();
    g_socket_client_set_tls(client, TRUE);
    g_signal_connect(client, "event", G_CALLBACK(onEvent), database);
    const auto port = static_cast<guint16>(std::atoi(argv[3]));
    GSocketConnection* const connection =
        g_socket_client_connect_to_host(client, argv[2], port, nullptr, &problem);
    if (connection == nullptr)
        g_printerr("%s\n", problem->message);
    else
        g_object_unref(connection);
    g_clear_error(&problem);
    g_object_unref(client);
    g_object_unref(database);
    return connection == nullptr ? 1 : 0;
}
