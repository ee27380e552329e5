-- What a PostgreSQL database (15 or later) needs before statements run on it. Run it as a superuser, once and after every update,
-- in the database with the tables:
--
--     psql -v ON_ERROR_STOP=1 -f oracle.sql 'postgresql://postgres@host/parcels'
--
-- Make the database with the collation C (createdb -T template0 -E UTF8 --lc-collate=C parcels), so that it sorts texts as Oracle
-- does. Accounts that run statements need no more than the role kelvara_reader: create user branch in role kelvara_reader.
--
-- The functions have Oracle's meaning: the empty text is null, numbers are exact. Statements name them with their schema, so
-- that no search path is needed. Most cost no call: the planner takes their bodies into the statement, or computes them once.

begin;

set local client_min_messages = warning;
create extension if not exists orafce;
create schema if not exists kelvara;
set local search_path = pg_catalog;

-- What Oracle bounds: texts that functions make, and dates. The name of a constraint is what a person reads.
do $make$
begin
    if to_regtype('kelvara.varchar2') is null then
        create domain kelvara.varchar2 as text
            constraint "ORA-01489: 字符串连接的结果过长，最多 4000 字节" check (octet_length(value) <= 4000);
        create domain kelvara.moment as timestamp
            constraint "ORA-01841: (全) 年度值必须介于 1 和 9999 之间" check (value >= '0001-01-01' and value < '10000-01-01');
    end if;
end
$make$;

-- Numbers and dates as Oracle writes them: .5 for 0.50.
create or replace function kelvara.oracle_text(text) returns text
    language sql immutable parallel safe as $$ select $1 $$;
create or replace function kelvara.oracle_text(numeric) returns text
    language sql immutable parallel safe as $$ select regexp_replace(trim_scale($1)::text, '^(-?)0\.', '\1.') $$;
create or replace function kelvara.oracle_text(timestamp) returns text
    language sql stable parallel safe as $$ select to_char($1, 'yyyy-mm-dd hh24:mi:ss') $$;

-- Sums and differences with dates; a number is days.
create or replace function kelvara.oracle_date_plus(timestamp, numeric) returns timestamp
    language sql immutable parallel safe as $$ select ($1 + $2::float8 * interval '1 day')::timestamp(0)::kelvara.moment $$;
create or replace function kelvara.oracle_date_plus(numeric, timestamp) returns timestamp
    language sql immutable parallel safe as $$ select ($2 + $1::float8 * interval '1 day')::timestamp(0)::kelvara.moment $$;
create or replace function kelvara.oracle_date_minus(timestamp, numeric) returns timestamp
    language sql immutable parallel safe as $$ select ($1 - $2::float8 * interval '1 day')::timestamp(0)::kelvara.moment $$;
create or replace function kelvara.oracle_date_minus(timestamp, timestamp) returns numeric
    language sql immutable parallel safe as $$ select trim_scale(extract(epoch from $1 - $2) / 86400) $$;

create or replace function kelvara.nvl(text, text) returns text
    language sql immutable parallel safe as $$ select coalesce(nullif($1, ''), $2) $$;
create or replace function kelvara.nvl(text, numeric) returns text
    language sql immutable parallel safe as $$ select coalesce(nullif($1, ''), kelvara.oracle_text($2)) $$;
create or replace function kelvara.nvl(anycompatible, anycompatible) returns anycompatible
    language sql immutable parallel safe as $$ select coalesce($1, $2) $$;
create or replace function kelvara.nvl2(anyelement, anycompatible, anycompatible) returns anycompatible
    language sql immutable parallel safe as $$ select case when nullif($1::text, '') is null then $3 else $2 end $$;

-- null when one of them is.
create or replace function kelvara.greatest(variadic anycompatiblearray) returns anycompatible
    language sql immutable parallel safe
    as $$ select case when array_position($1, null) is null then (select max(value) from unnest($1) value) end $$;
create or replace function kelvara.least(variadic anycompatiblearray) returns anycompatible
    language sql immutable parallel safe
    as $$ select case when array_position($1, null) is null then (select min(value) from unnest($1) value) end $$;

-- decode(value, search, result, ... [, otherwise]) with up to ten pairs: null finds null.
do $make$
declare
    searched text;
    results text;
    parameters text;
    branches text;
begin
    foreach searched in array array['text', 'numeric', 'timestamp'] loop
        parameters := searched;
        branches := '';
        for pair in 1..10 loop
            parameters := parameters || ', ' || searched || ', anycompatible';
            branches := branches || format(' when $1 is not distinct from $%s then $%s', pair * 2, pair * 2 + 1);
            execute format('create or replace function kelvara.decode(%s) returns anycompatible
                language sql immutable parallel safe as $$ select case%s end $$', parameters, branches);
            execute format('create or replace function kelvara.decode(%s, anycompatible) returns anycompatible
                language sql immutable parallel safe as $$ select case%s else $%s end $$', parameters, branches, pair * 2 + 2);
        end loop;
    end loop;
end
$make$;

-- Texts.
create or replace function kelvara.substr(text, numeric) returns text
    language sql immutable parallel safe
    as $$ select nullif(case when $2 >= 0 then substr($1, greatest($2::int, 1))
                             when -$2 <= length($1) then right($1, -$2::int) end, '') $$;
create or replace function kelvara.substr(text, numeric, numeric) returns text
    language sql immutable parallel safe as $$ select nullif(left(kelvara.substr($1, $2), greatest($3::int, 0)), '') $$;
create or replace function kelvara.instr(text, text) returns int
    language sql immutable parallel safe as $$ select strpos(nullif($1, ''), nullif($2, '')) $$;
create or replace function kelvara.instr(text, text, numeric, numeric default 1) returns int
    language sql immutable parallel safe as $$ select oracle.instr(nullif($1, ''), nullif($2, ''), $3::int, $4::int) $$;
create or replace function kelvara.length(text) returns int
    language sql immutable parallel safe as $$ select length(nullif($1, '')) $$;
create or replace function kelvara.length(numeric) returns int
    language sql immutable parallel safe as $$ select length(kelvara.oracle_text($1)) $$;
create or replace function kelvara.trim(text) returns text
    language sql immutable parallel safe as $$ select nullif(btrim($1), '') $$;
create or replace function kelvara.ltrim(text, text default ' ') returns text
    language sql immutable parallel safe as $$ select nullif(ltrim($1, nullif($2, '')), '') $$;
create or replace function kelvara.rtrim(text, text default ' ') returns text
    language sql immutable parallel safe as $$ select nullif(rtrim($1, nullif($2, '')), '') $$;
create or replace function kelvara.replace(text, text, text default null) returns text
    language sql immutable parallel safe as $$ select nullif(replace($1, coalesce($2, ''), coalesce($3, ''))::kelvara.varchar2, '') $$;
create or replace function kelvara.regexp_instr(text, text, numeric default 1, numeric default 1, numeric default 0, text default 'c')
    returns int language sql immutable parallel safe
    as $$ select oracle.regexp_instr(nullif($1, ''), nullif($2, ''), $3::int, $4::int, $5::int, $6) $$;

-- Numbers. By zero the dividend itself is left.
create or replace function kelvara.round(numeric, numeric default 0) returns numeric
    language sql immutable parallel safe as $$ select round($1, $2::int) $$;
create or replace function kelvara.trunc(numeric, numeric default 0) returns numeric
    language sql immutable parallel safe as $$ select trunc($1, $2::int) $$;
create or replace function kelvara.ceil(numeric) returns numeric
    language sql immutable parallel safe as $$ select ceil($1) $$;
create or replace function kelvara.floor(numeric) returns numeric
    language sql immutable parallel safe as $$ select floor($1) $$;
create or replace function kelvara.sign(numeric) returns numeric
    language sql immutable parallel safe as $$ select sign($1) $$;
create or replace function kelvara.mod(numeric, numeric) returns numeric
    language sql immutable parallel safe as $$ select case when $2 = 0 then $1 else mod($1, $2) end $$;
create or replace function kelvara.to_number(text) returns numeric
    language sql immutable parallel safe as $$ select nullif($1, '')::numeric $$;
create or replace function kelvara.to_number(numeric) returns numeric
    language sql immutable parallel safe as $$ select $1 $$;

-- Dates. PostgreSQL reads a text as a moment of the session's time zone; in UTC no hour is missing.
create or replace function kelvara.to_date(text, text default 'yyyy-mm-dd hh24:mi:ss') returns timestamp
    language sql immutable parallel safe set timezone = 'UTC'
    as $$ select to_timestamp(nullif($1, ''), $2)::timestamp(0) $$;
create or replace function kelvara.to_date(timestamp, text default null) returns timestamp
    language sql immutable parallel safe as $$ select $1 $$;
create or replace function kelvara.to_char(text) returns text
    language sql immutable parallel safe as $$ select nullif($1, '') $$;
create or replace function kelvara.to_char(numeric) returns text
    language sql immutable parallel safe as $$ select kelvara.oracle_text($1) $$;
create or replace function kelvara.to_char(timestamp) returns text
    language sql stable parallel safe as $$ select kelvara.oracle_text($1) $$;
create or replace function kelvara.to_char(timestamp, text) returns text
    language sql stable parallel safe as $$ select nullif(to_char($1, $2)::kelvara.varchar2, '') $$;
create or replace function kelvara.to_char(numeric, text) returns text
    language sql immutable parallel safe as $$ select to_char($1, $2)::kelvara.varchar2 $$;
create or replace function kelvara.trunc(timestamp, text default 'dd') returns timestamp
    language sql immutable parallel safe
    as $$ select date_trunc(case lower($2) when 'dd' then 'day' when 'mm' then 'month' when 'yyyy' then 'year' when 'hh' then 'hour'
                                           when 'hh24' then 'hour' when 'mi' then 'minute' else lower($2) end, $1) $$;
create or replace function kelvara.round(timestamp) returns timestamp
    language sql immutable parallel safe as $$ select date_trunc('day', $1 + interval '12 hours') $$;

-- Who may run statements: reads everything and writes nothing.
do $make$
begin
    if not exists (select from pg_roles where rolname = 'kelvara_reader') then
        create role kelvara_reader nologin;
    end if;
end
$make$;
alter role kelvara_reader set default_transaction_read_only = on;
-- Sessions bound the temporary files of a statement, where the server does not.
grant set on parameter temp_file_limit to kelvara_reader;
grant usage on schema public, kelvara, oracle to kelvara_reader;
grant select on all tables in schema public to kelvara_reader;
alter default privileges in schema public grant select on tables to kelvara_reader;

commit;
