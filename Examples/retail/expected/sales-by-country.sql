SELECT country.country_name, sum(sales.amount) AS amount
FROM sales
JOIN store ON sales.store_key = store.store_key
JOIN city ON store.city_key = city.city_key
JOIN region ON city.region_key = region.region_key
JOIN country ON region.country_key = country.country_key
GROUP BY country.country_name
ORDER BY country.country_name;
